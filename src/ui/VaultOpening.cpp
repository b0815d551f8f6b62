// SPDX-License-Identifier: GPL-3.0-or-later
#include "VaultOpening.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <utility>

namespace vorlane {

namespace {

// How long a vault may take to open before the window shows that it is opening: a small vault
// opens in a blink, and a window that flashes a busy state for it would only be noise.
constexpr std::chrono::milliseconds quietOpening{100};

} // namespace

VaultOpening::VaultOpening(std::string vaultPath, KeychainManager& keychain,
                           const UserCalendar& calendar, Timers& timers)
    : m_worker([this, path = std::move(vaultPath), &keychain, &calendar, &timers] {
        Opened opened = DataStore::open(path, keychain, calendar, timers);
        const std::scoped_lock lock(m_mutex);
        m_opened.emplace(std::move(opened));
        if (m_waiting != nullptr) {
            QMetaObject::invokeMethod(m_waiting, &QEventLoop::quit, Qt::QueuedConnection);
        }
    }) {}

VaultOpening::~VaultOpening() {
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

VaultOpening::Opened VaultOpening::wait() {
    m_worker.join();
    return std::move(*m_opened);
}

std::optional<VaultOpening::Opened> VaultOpening::waitBehind(QWidget& progress) {
    QEventLoop waiting;
    bool closed = false;
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_opened) {
            m_waiting = &waiting;
        }
    }
    if (m_waiting != nullptr) {
        // Tied to the loop: a vault that failed at once must not bring the window up behind the
        // message that says so.
        QTimer::singleShot(quietOpening, &waiting, [&progress] { progress.show(); });
        QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &waiting,
                         [&closed] { closed = true; });
        waiting.exec();
        const std::scoped_lock lock(m_mutex);
        m_waiting = nullptr;
    }
    m_worker.join();
    if (closed) {
        return std::nullopt;
    }
    return std::move(*m_opened);
}

} // namespace vorlane
