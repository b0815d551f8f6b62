// SPDX-License-Identifier: GPL-3.0-or-later
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
// outlive it, and the calendar must outlive the centre too (the centre may build the requests
// on a thread of its own, after this call has returned).
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
    // Only what the reminders need is copied from the services here; the centre builds the
    // requests from that copy, possibly later on its own thread.
    void scheduleExpirationNotifications(const std::vector<ServiceRecord*>& services);

    // The service a reminder's identifier names ("vorlane.warn.<UUID>.3d"); nothing for an
    // identifier this class did not make.
    static std::optional<Uuid> serviceOf(std::string_view identifier);

private:
    NotificationCenter& m_center;
    const UserCalendar& m_calendar;
    Log m_log;
};

} // namespace vorlane
