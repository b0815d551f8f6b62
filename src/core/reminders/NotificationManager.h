// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "calendar/ReminderSettings.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class NotificationCenter;
struct ServiceRecord;
class UserCalendar;

// The expiration reminders: for each lead time the user chose (3 and 1 days before unless told
// otherwise, see ReminderSettings) a warning (2 days or more), a critical reminder (1 day) or one
// on the day itself, at the expiration's time of day or the chosen time in the user's calendar.
// The centre's pending requests are the schedule; this object keeps only the settings and the
// reminders the user snoozed. Main thread; the centre and calendar must outlive it, and the
// calendar must outlive the centre too (the centre may build the requests on a thread of its
// own, after this call has returned).
class NotificationManager {
public:
    // Where diagnostics go (standard error unless a test listens); may be called from any thread.
    using Log = std::function<void(const std::string& line)>;

    static constexpr std::chrono::hours snoozeDelay{24};
    static constexpr std::string_view warningCategory = "EXPIRATION_WARNING";
    static constexpr std::string_view criticalCategory = "EXPIRATION_CRITICAL";

    NotificationManager(NotificationCenter& center, const UserCalendar& calendar, Log log = {});

    // Asks the centre for permission; an error is logged as "Notification permission error: " and
    // the reason, a plain refusal is silent. Nothing is remembered either way.
    void requestPermission();

    // Takes effect at the next rebuild.
    void setSettings(ReminderSettings settings) { m_settings = std::move(settings); }
    const ReminderSettings& settings() const { return m_settings; }

    // Rebuilds the schedule: every pending request goes, then each service that is not archived,
    // expires after now and is reminded under the settings gets one reminder per lead time, each
    // only if its own minute is still ahead; and each snoozed reminder whose service still has
    // the expiration it had when snoozed comes again at its new minute, once.
    // Only what the reminders need is copied from the services here; the centre builds the
    // requests from that copy, possibly later on its own thread.
    void scheduleExpirationNotifications(const std::vector<ServiceRecord*>& services);

    // The reminder `identifier` of `service` comes again `snoozeDelay` from now, once (from the
    // next rebuild on). Forgotten when the service is renewed or its expiration otherwise moves.
    // Nothing happens for an identifier this class did not make.
    void snooze(const ServiceRecord& service, std::string_view identifier);

    // The service a reminder's identifier names ("vorlane.warn.<UUID>.3d"); nothing for an
    // identifier this class did not make.
    static std::optional<Uuid> serviceOf(std::string_view identifier);
    // Its lead time in days (3 for "vorlane.warn.<UUID>.3d").
    static std::optional<int> daysBeforeOf(std::string_view identifier);

    struct Snoozed {
        Uuid service;
        int daysBefore = 0;
        Instant expiration; // the service's when snoozed
        Instant due;
    };

private:
    NotificationCenter& m_center;
    const UserCalendar& m_calendar;
    Log m_log;
    ReminderSettings m_settings;
    std::vector<Snoozed> m_snoozed;
};

} // namespace vorlane
