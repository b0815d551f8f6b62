// SPDX-License-Identifier: GPL-3.0-or-later
#include "calendar/LeadTimes.h"

#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <chrono>

namespace vorlane {

bool LeadTimes::reminds(const ServiceRecord& service, const ReminderSettings& settings) {
    return settings.includeAutoRenewing || !service.autoRenew;
}

std::optional<Instant> LeadTimes::reminderMinute(const UserCalendar& calendar, Instant expiration,
                                                 int daysBefore, std::optional<int> minuteOfDay) {
    std::optional<Instant> date = calendar.adding(UserCalendar::Unit::day, -daysBefore, expiration);
    if (date && minuteOfDay) {
        date = calendar.atMinuteOfDay(*date, *minuteOfDay);
    }
    if (!date) {
        return std::nullopt;
    }
    // Every zone in use today is a whole number of minutes from UTC, so dropping the seconds of
    // the instant drops those of the local time of day too.
    return std::chrono::floor<std::chrono::minutes>(*date);
}

std::optional<int> LeadTimes::minutesFromStartOfDay(const UserCalendar& calendar,
                                                    Instant expiration, int daysBefore,
                                                    std::optional<int> minuteOfDay) {
    constexpr int minutesPerDay = 24 * 60;
    if (minuteOfDay) {
        return -daysBefore * minutesPerDay + *minuteOfDay;
    }
    const std::optional<UserCalendar::LocalTime> local = calendar.localTime(expiration);
    if (!local) {
        return std::nullopt;
    }
    return -daysBefore * minutesPerDay + local->minuteOfDay;
}

} // namespace vorlane
