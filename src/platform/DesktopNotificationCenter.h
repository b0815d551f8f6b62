// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ReminderSchedule.h"
#include "reminders/NotificationCenter.h"

#include <QDBusConnection>
#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorlane {

class Clock;

// The notification centre of a Linux desktop. The desktop has no scheduled notifications, so the
// pending requests live in a ReminderSchedule file beside the vault, and delivery shows the ones
// whose minute has come as freedesktop notifications (org.freedesktop.Notifications on the
// session bus): the running program delivers every minute, and `vorlane
// --deliver-due-notifications`, run by a systemd user timer, while the program is closed. A
// request is marked delivered under the schedule's lock in the same step that shows it, so the two
// never show one reminder twice.
//
// "Permission" is whether a notification service answers on the bus: there is nothing to grant.
// The file's work runs on this centre's worker, one thread that does it in the order it was asked
// for: building a replacement list of requests, merging it with what was already shown, writing
// the file (not at all when it already holds that list), and the program's deliveries. So a
// rebuild of tens of thousands of requests costs the main thread next to nothing. Main thread,
// apart from the worker inside; the destructor waits for the worker, so the schedule is written
// even when the program quits right after a rebuild.
class DesktopNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds callTimeout{5000};
    // How long a shown request is remembered: long enough that no rebuild can add it again (only
    // one rebuilt within the minute it fell due could), short enough to keep the file small.
    static constexpr std::chrono::hours deliveredKept{48};

    DesktopNotificationCenter(const QString& schedulePath, const QDBusConnection& bus,
                              const Clock& clock, QObject* parent = nullptr);
    // Waits until the worker has done everything asked of it.
    ~DesktopNotificationCenter() override;

    // Replies on the main loop: granted when the notification service answers, else the error.
    void requestAuthorization(AuthorizationReply reply) override;
    // `build` runs on the worker.
    void replaceAllPendingRequests(RequestBuilder build) override;
    // On the worker, after what was asked before it.
    void show(NotificationRequest request) override;

    // Waits until the worker has done everything asked of it.
    void flush();
    // Shows, in the order they fall due, every request not yet shown whose minute is at or before
    // `now`, and marks each shown. Stops at the first that the notification service does not take
    // (the rest stay pending for the next try) and returns false then; true otherwise. Waits for
    // the worker first, then works on the calling thread: for the timer's command and tests.
    bool deliverDue(Instant now);
    // The same on the worker, for the running program's minute tick; returns at once.
    void deliverDueInBackground(Instant now);
    // What is still to be shown, in the order it falls due.
    std::vector<NotificationRequest> pendingRequests();

    // The notification actions beside a click, while the program runs.
    static inline const QString markRenewedAction = QStringLiteral("mark-renewed");
    static inline const QString snoozeAction = QStringLiteral("snooze");

    // Listens for clicks on the notifications this centre (or the timer's command) showed and
    // reports them as `activated`, and from now on offers "Mark Renewed" and "Snooze 1 Day" on
    // the notifications it shows; for the running program.
    void watchActivations();

Q_SIGNALS:
    // A delivered notification was clicked; the request's identifier.
    void activated(const QString& identifier);
    // Its "Mark Renewed" or "Snooze 1 Day" action was chosen.
    void markRenewedChosen(const QString& identifier);
    void snoozeChosen(const QString& identifier);

private Q_SLOTS:
    void onActionInvoked(uint notificationId, const QString& action);

private:
    // Notifications shown by one delivery: the service's id and the request's identifier.
    using Shown = std::vector<std::pair<std::uint32_t, std::string>>;

    void enqueue(std::function<void()> work);
    // Worker (or a caller that waited for it): the file's part of a rebuild.
    void write(std::vector<NotificationRequest> requests, Instant now) const;
    // Any thread, the lock not held; `complete` false when a request was refused.
    Shown deliver(Instant now, bool& complete) const;
    // Whether the notification service reads bodies as markup (its "body-markup" capability).
    bool readsBodyMarkup() const;
    // `markup`: escape the body for a service that reads it as markup. `reminderActions`: offer
    // "Mark Renewed" and "Snooze 1 Day" beside the click.
    std::optional<std::uint32_t> notify(const NotificationRequest& request, bool markup,
                                        bool reminderActions, QString& error) const;
    void remember(const Shown& shown);
    void report(const QString& identifier, const QString& action);

    ReminderSchedule m_schedule;
    QDBusConnection m_bus;
    const Clock& m_clock;
    // The notifications this process showed, by the id the service gave them.
    std::map<std::uint32_t, std::string> m_shown;
    // Read by the worker when it shows a notification.
    std::atomic<bool> m_offersActions = false;
    // One thread: the schedule's work runs in the order it was queued. Last, so that it is
    // waited for before anything it uses goes.
    QThreadPool m_worker;
};

} // namespace vorlane
