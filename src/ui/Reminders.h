// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/ScopedConnection.h"
#include "util/Timers.h"

#include <QObject>
#include <QPointer>
#include <QWindow>

namespace vorlane {

struct AppContext;
class DesktopNotificationCenter;
class MainWindow;
class NotificationManager;
struct ServiceRecord;

// The running program's part in the reminders: each time the main window's content is shown it
// asks for permission and rebuilds the schedule from every service that is not archived, under
// the user's reminder settings, once the window is on screen and painted, from the main loop; any
// change to the vault rebuilds it too, `rebuildDelay` after the last of a burst of changes (the
// building itself runs on the centre's worker). At the start of every minute it delivers what has
// fallen due; a click on a delivered reminder brings the window forward on that service, "Mark
// Renewed" renews it, "Snooze 1 Day" shows it again a day later. Main thread; the context,
// centre, manager and window must outlive it.
class Reminders : public QObject {
    Q_OBJECT

public:
    Reminders(AppContext& context, DesktopNotificationCenter& center, NotificationManager& manager,
              MainWindow& window, QObject* parent = nullptr);
    ~Reminders() override;

    static constexpr std::chrono::milliseconds rebuildDelay{300};

    // Asks for permission, then rebuilds the schedule.
    void rebuild();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void rebuildOncePainted();
    void armDelivery();
    void open(const QString& identifier);
    void renew(const QString& identifier);
    void snooze(const QString& identifier);
    // Rebuilds `rebuildDelay` from now, unless another change comes first.
    void rebuildSoon();
    void reschedule();
    ServiceRecord* serviceOf(const QString& identifier) const;

    AppContext& m_context;
    DesktopNotificationCenter& m_center;
    NotificationManager& m_manager;
    QPointer<MainWindow> m_window;
    // The window's surface while a rebuild waits for it to be exposed.
    QPointer<QWindow> m_awaitingExpose;
    Timers::TimerId m_deliveryTimer = 0;
    Timers::TimerId m_rebuildTimer = 0;
    ScopedConnection m_storeChanged;
};

} // namespace vorlane
