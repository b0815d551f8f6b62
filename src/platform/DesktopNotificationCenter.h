#pragma once

#include "ReminderSchedule.h"
#include "reminders/NotificationCenter.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace vorlane {

class Clock;

// The notification centre of a Linux desktop. The desktop has no scheduled notifications, so the
// pending requests live in a ReminderSchedule file beside the vault, and `deliverDue` shows the
// ones whose minute has come as freedesktop notifications (org.freedesktop.Notifications on the
// session bus): the running program calls it every minute, and `vorlane
// --deliver-due-notifications`, run by a systemd user timer, calls it while the program is
// closed. A request is marked delivered under the schedule's lock in the same step that shows it,
// so the two never show one reminder twice.
//
// "Permission" is whether a notification service answers on the bus: there is nothing to grant.
// Removing and adding requests changes a copy in memory that is written once, when the main loop
// next runs (or at `flush`, `deliverDue`, or destruction), so rebuilding a schedule of thousands of
// requests writes the file once. Main thread.
class DesktopNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds callTimeout{5000};
    // How long a shown request is remembered: long enough that no rebuild can add it again (only
    // one rebuilt within the minute it fell due could), short enough to keep the file small.
    static constexpr std::chrono::hours deliveredKept{48};

    DesktopNotificationCenter(const QString& schedulePath, const QDBusConnection& bus,
                              const Clock& clock, QObject* parent = nullptr);
    // Writes a schedule still held in memory.
    ~DesktopNotificationCenter() override;

    // Replies on the main loop: granted when the notification service answers, else the error.
    void requestAuthorization(AuthorizationReply reply) override;
    void removeAllPendingRequests() override;
    void add(NotificationRequest request) override;

    // Writes the schedule now if it was changed.
    void flush();
    // Shows, in schedule order, every request not yet shown whose minute is at or before `now`,
    // and marks each shown. Stops at the first that the notification service does not take (the
    // rest stay pending for the next try) and returns false then; true otherwise.
    bool deliverDue(Instant now);
    // What is still to be shown, in schedule order.
    std::vector<NotificationRequest> pendingRequests();

    // Listens for clicks on the notifications this centre (or the timer's command) showed and
    // reports them as `activated`; for the running program.
    void watchActivations();

Q_SIGNALS:
    // A delivered notification was clicked; the request's identifier.
    void activated(const QString& identifier);

private Q_SLOTS:
    void onActionInvoked(uint notificationId, const QString& action);

private:
    std::optional<std::uint32_t> notify(const NotificationRequest& request, QString& error);
    std::vector<ReminderSchedule::Entry> pendingEntries();
    void scheduleFlush();

    ReminderSchedule m_schedule;
    QDBusConnection m_bus;
    const Clock& m_clock;
    // The rebuilt list of pending requests, while it is not written yet, and where each
    // identifier sits in it (a rebuild adds thousands: finding one must not walk the list).
    std::optional<std::vector<NotificationRequest>> m_staged;
    std::unordered_map<std::string, std::size_t> m_stagedIndex;
    bool m_flushQueued = false;
    // The notifications this process showed, by the id the service gave them.
    std::map<std::uint32_t, std::string> m_shown;
};

} // namespace vorlane
