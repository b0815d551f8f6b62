// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "calendar/ReminderSettings.h"
#include "util/Instant.h"

#include <optional>

namespace vorlane {

struct ServiceRecord;
class UserCalendar;

// When a reminder "n days before" an expiration comes, in one place: the desktop reminders and
// the renewals calendar's alarms both ask here, so the two never disagree.
class LeadTimes {
public:
    // Whether `service` gets reminders at all under `settings`: only services that renew
    // automatically can be left out (the calendar still lists them, without alarms).
    static bool reminds(const ServiceRecord& service, const ReminderSettings& settings);

    // `daysBefore` calendar days before `expiration`, at the expiration's own time of day or at
    // `minuteOfDay`, seconds dropped; nothing when the calendar cannot compute it. Calendar days,
    // so a reminder across a daylight-saving change keeps its wall-clock time.
    static std::optional<Instant> reminderMinute(const UserCalendar& calendar, Instant expiration,
                                                 int daysBefore, std::optional<int> minuteOfDay);

    // The same reminder as minutes from the start of the expiration's local day (negative before
    // it), which is how a calendar alarm on an all-day event says when it rings.
    static std::optional<int> minutesFromStartOfDay(const UserCalendar& calendar,
                                                    Instant expiration, int daysBefore,
                                                    std::optional<int> minuteOfDay);
};

} // namespace vorlane
