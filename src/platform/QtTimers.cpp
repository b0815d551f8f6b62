// SPDX-License-Identifier: GPL-3.0-or-later
#include "QtTimers.h"

#include <QMetaObject>
#include <QTimer>

namespace vorlane {

QtTimers::QtTimers() = default;

QtTimers::~QtTimers() = default;

Timers::TimerId QtTimers::startOneShot(std::chrono::milliseconds delay, Callback callback) {
    const TimerId id = ++m_lastId;
    auto* timer = new QTimer(&m_context);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, &m_context,
                     [this, id, timer, callback = std::move(callback)] {
                         m_timers.erase(id);
                         timer->deleteLater();
                         callback();
                     });
    m_timers.emplace(id, timer);
    timer->start(delay);
    return id;
}

void QtTimers::cancel(TimerId id) {
    const auto found = m_timers.find(id);
    if (found == m_timers.end()) {
        return;
    }
    found->second->stop();
    found->second->deleteLater();
    m_timers.erase(found);
}

void QtTimers::post(Callback callback) {
    QMetaObject::invokeMethod(&m_context, std::move(callback), Qt::QueuedConnection);
}

} // namespace vorlane
