// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Timers.h"

#include <QObject>
#include <QPointer>
#include <QWindow>

namespace vorlane {

struct AppContext;
class DesktopNotificationCenter;
class MainWindow;
class NotificationManager;

// The running program's part in the reminders: each time the main window's content is shown it
// asks for permission and rebuilds the schedule from every service that is not archived (nothing
// else reschedules), once the window is on screen and painted, from the main loop; at the start of
// every minute it delivers what has fallen due; a click on a delivered reminder brings the window
// forward on that service. Main thread; the context, centre, manager and window must outlive it.
class Reminders : public QObject {
    Q_OBJECT

public:
    Reminders(AppContext& context, DesktopNotificationCenter& center, NotificationManager& manager,
              MainWindow& window, QObject* parent = nullptr);
    ~Reminders() override;

    // Asks for permission, then rebuilds the schedule.
    void rebuild();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void rebuildOncePainted();
    void armDelivery();
    void open(const QString& identifier);

    AppContext& m_context;
    DesktopNotificationCenter& m_center;
    NotificationManager& m_manager;
    QPointer<MainWindow> m_window;
    // The window's surface while a rebuild waits for it to be exposed.
    QPointer<QWindow> m_awaitingExpose;
    Timers::TimerId m_deliveryTimer = 0;
};

} // namespace vorlane
