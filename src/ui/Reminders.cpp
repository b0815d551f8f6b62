// SPDX-License-Identifier: GPL-3.0-or-later
#include "Reminders.h"

#include "DesktopNotificationCenter.h"
#include "MainWindow.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "reminders/NotificationManager.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

#include <QEvent>
#include <QTimer>

#include <chrono>

namespace vorlane {

Reminders::Reminders(AppContext& context, DesktopNotificationCenter& center,
                     NotificationManager& manager, MainWindow& window, QObject* parent)
    : QObject(parent)
    , m_context(context)
    , m_center(center)
    , m_manager(manager)
    , m_window(&window) {
    connect(&window, &MainWindow::contentShown, this, &Reminders::rebuildOncePainted);
    connect(&center, &DesktopNotificationCenter::activated, this, &Reminders::open);
    center.watchActivations();
    armDelivery();
}

Reminders::~Reminders() {
    m_context.timers.cancel(m_deliveryTimer);
}

void Reminders::rebuild() {
    m_manager.requestPermission();
    // Only services not archived that expire after now can have reminders. The store's expiration
    // index lists them without ordering every service by title first, which at 100,000 services
    // cost the window more than building the reminders does.
    m_manager.scheduleExpirationNotifications(
        m_context.store.fetchExpiringBetween(m_context.calendar.now(), Instant::max()));
}

void Reminders::rebuildOncePainted() {
    // A rebuild over tens of thousands of services takes most of a second. Run inside the show, it
    // kept the window off the screen that long; it waits instead until the window is exposed (the
    // expose paints it), and runs from the main loop after that paint.
    QWindow* surface = m_window ? m_window->windowHandle() : nullptr;
    if (surface == nullptr || surface->isExposed()) {
        QTimer::singleShot(0, this, &Reminders::rebuild);
        return;
    }
    m_awaitingExpose = surface;
    surface->installEventFilter(this);
}

bool Reminders::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && watched == m_awaitingExpose &&
        m_awaitingExpose->isExposed()) {
        m_awaitingExpose->removeEventFilter(this);
        m_awaitingExpose.clear();
        // Queued: the window paints while this expose event is handled.
        QTimer::singleShot(0, this, &Reminders::rebuild);
    }
    return QObject::eventFilter(watched, event);
}

void Reminders::armDelivery() {
    // Reminders fall due on whole minutes: wake at the start of the next one.
    using namespace std::chrono;
    const Instant now = m_context.calendar.now();
    const Instant next = floor<minutes>(now) + minutes(1);
    m_deliveryTimer =
        m_context.timers.startOneShot(duration_cast<milliseconds>(next - now), [this] {
            m_deliveryTimer = 0;
            // On the centre's worker: the window never waits for the file or the bus.
            m_center.deliverDueInBackground(m_context.calendar.now());
            armDelivery();
        });
}

void Reminders::open(const QString& identifier) {
    const std::optional<Uuid> id = NotificationManager::serviceOf(identifier.toStdString());
    ServiceRecord* service = id ? m_context.store.service(*id) : nullptr;
    if (service == nullptr) {
        return; // deleted since the reminder was scheduled
    }
    m_context.state.navigateTo(*service);
    if (m_window) {
        m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
        m_window->show();
        m_window->raise();
        m_window->activateWindow();
    }
}

} // namespace vorlane
