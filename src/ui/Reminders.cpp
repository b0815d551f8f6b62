// SPDX-License-Identifier: GPL-3.0-or-later
#include "Reminders.h"

#include "DesktopNotificationCenter.h"
#include "MainWindow.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "calendar/ReminderSettings.h"
#include "calendar/RenewalsCalendarFile.h"
#include "reminders/NotificationManager.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

#include <QEvent>
#include <QTimer>
#include <QtGlobal>

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
    connect(&center, &DesktopNotificationCenter::markRenewedChosen, this, &Reminders::renew);
    connect(&center, &DesktopNotificationCenter::snoozeChosen, this, &Reminders::snooze);
    center.watchActivations();
    // A renewed, archived, deleted or imported service must not keep its old reminders until the
    // window is next shown: "Expiring Tomorrow" for a service renewed an hour ago is wrong.
    m_storeChanged = ScopedConnection(context.store.changed, [this] { rebuildSoon(); });
    armDelivery();
}

Reminders::~Reminders() {
    m_context.timers.cancel(m_deliveryTimer);
    m_context.timers.cancel(m_rebuildTimer);
}

void Reminders::rebuild() {
    m_manager.requestPermission();
    reschedule();
}

void Reminders::rebuildSoon() {
    // A form's save, an import or a restore notes many changes in a row: one rebuild after them.
    m_context.timers.cancel(m_rebuildTimer);
    m_rebuildTimer = m_context.timers.startOneShot(rebuildDelay, [this] {
        m_rebuildTimer = 0;
        reschedule();
    });
}

void Reminders::reschedule() {
    m_context.timers.cancel(m_rebuildTimer);
    m_rebuildTimer = 0;
    m_manager.setSettings(ReminderSettings::read(m_context.preferences));
    // Only services not archived that expire after now can have reminders. The store's expiration
    // index lists them without ordering every service by title first, which at 100,000 services
    // cost the window more than building the reminders does.
    m_manager.scheduleExpirationNotifications(
        m_context.store.fetchExpiringBetween(m_context.calendar.now(), Instant::max()));
    // The calendar file follows the same changes as the reminders, so that a calendar program
    // subscribed to it moves a renewed service's event as soon as the reminder moves.
    if (const auto error = RenewalsCalendarFile::refresh(m_context.store, m_context.preferences,
                                                         m_context.calendar)) {
        qWarning("Renewals calendar error: %s", error->c_str());
    }
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

ServiceRecord* Reminders::serviceOf(const QString& identifier) const {
    const std::optional<Uuid> id = NotificationManager::serviceOf(identifier.toStdString());
    // Nothing when deleted since the reminder was scheduled.
    return id ? m_context.store.service(*id) : nullptr;
}

void Reminders::renew(const QString& identifier) {
    if (ServiceRecord* service = serviceOf(identifier)) {
        // Saves, and the store's change rebuilds the schedule without the old reminders.
        m_context.serviceActions.markRenewed(*service);
    }
}

void Reminders::snooze(const QString& identifier) {
    if (const ServiceRecord* service = serviceOf(identifier)) {
        m_manager.snooze(*service, identifier.toStdString());
        rebuildSoon();
    }
}

void Reminders::open(const QString& identifier) {
    ServiceRecord* service = serviceOf(identifier);
    if (service == nullptr) {
        return;
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
