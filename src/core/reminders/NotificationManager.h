#pragma once

#include "util/Instant.h"
#include "util/Uuid.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class NotificationCenter;
struct ServiceRecord;
class UserCalendar;

// The expiration reminders: a warning 3 days and a critical reminder 1 day before each service
// expires, at the expiration's time of day in the user's calendar. The centre's pending requests
// are the whole schedule; this object keeps nothing. Main thread; the centre and calendar must
// outlive it.
class NotificationManager {
public:
    // Where diagnostics go (standard error unless a test listens); may be called from any thread.
    using Log = std::function<void(const std::string& line)>;

    static constexpr int warningDaysBefore = 3;
    static constexpr int criticalDaysBefore = 1;
    static constexpr std::string_view warningCategory = "EXPIRATION_WARNING";
    static constexpr std::string_view criticalCategory = "EXPIRATION_CRITICAL";

    NotificationManager(NotificationCenter& center, const UserCalendar& calendar, Log log = {});

    // Asks the centre for permission; an error is logged as "Notification permission error: " and
    // the reason, a plain refusal is silent. Nothing is remembered either way.
    void requestPermission();

    // Rebuilds the schedule: every pending request goes, then each service that is not archived
    // and expires after now gets its two reminders, each only if its own minute is still ahead.
    void scheduleExpirationNotifications(const std::vector<ServiceRecord*>& services);

    // The service a reminder's identifier names ("vorlane.warn.<UUID>.3d"); nothing for an
    // identifier this class did not make.
    static std::optional<Uuid> serviceOf(std::string_view identifier);

private:
    void scheduleWarning(const ServiceRecord& service, Instant expiration, int daysBefore);
    void scheduleCritical(const ServiceRecord& service, Instant expiration, int daysBefore);
    // Expiration minus `daysBefore` calendar days, seconds dropped; nothing when the calendar
    // cannot give it or it is not strictly later than now.
    std::optional<Instant> reminderMinute(Instant expiration, int daysBefore) const;

    NotificationCenter& m_center;
    const UserCalendar& m_calendar;
    Log m_log;
};

} // namespace vorlane
