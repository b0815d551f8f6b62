// SPDX-License-Identifier: GPL-3.0-or-later
#include "money/ReportPeriod.h"

#include "util/UserCalendar.h"

#include <cstdio>

namespace vorlane {

namespace {

using namespace std::chrono;

// The first moment of a day of the user's calendar. Noon UTC of the same date is on that day or
// the one beside it in every zone; the day it falls on in the user's zone says which way to move.
std::optional<Instant> startOfDay(year_month_day date, const UserCalendar& calendar) {
    Instant guess = time_point_cast<milliseconds>(sys_days(date) + hours(12));
    const std::optional<UserCalendar::LocalTime> local = calendar.localTime(guess);
    if (!local) {
        return std::nullopt;
    }
    const year_month_day seen{year(local->year), month(static_cast<unsigned>(local->month)),
                              day(static_cast<unsigned>(local->day))};
    guess += sys_days(date) - sys_days(seen);
    return calendar.atMinuteOfDay(guess, 0);
}

} // namespace

std::optional<ReportPeriod> ReportPeriod::between(year_month_day first, year_month_day last,
                                                  const UserCalendar& calendar) {
    if (!first.ok() || !last.ok() || sys_days(last) < sys_days(first)) {
        return std::nullopt;
    }
    const std::optional<Instant> start = startOfDay(first, calendar);
    const std::optional<Instant> end =
        startOfDay(year_month_day(sys_days(last) + days(1)), calendar);
    if (!start || !end) {
        return std::nullopt;
    }
    ReportPeriod period;
    period.m_first = first;
    period.m_last = last;
    period.m_start = *start;
    period.m_end = *end;
    return period;
}

std::optional<ReportPeriod> ReportPeriod::preset(Preset preset, const UserCalendar& calendar) {
    const std::optional<UserCalendar::LocalTime> today = calendar.localTime(calendar.now());
    if (!today) {
        return std::nullopt;
    }
    const year thisYear{today->year};
    const month thisMonth{static_cast<unsigned>(today->month)};
    const year_month_day monthStart = thisYear / thisMonth / 1;
    const auto dayBefore = [](year_month_day date) {
        return year_month_day(sys_days(date) - days(1));
    };
    switch (preset) {
    case Preset::thisMonth:
        return between(monthStart, dayBefore(monthStart + months(1)), calendar);
    case Preset::lastMonth:
        return between(monthStart - months(1), dayBefore(monthStart), calendar);
    case Preset::thisQuarter: {
        const unsigned firstMonth = (static_cast<unsigned>(today->month) - 1) / 3 * 3 + 1;
        const year_month_day quarterStart = thisYear / month(firstMonth) / 1;
        return between(quarterStart, dayBefore(quarterStart + months(3)), calendar);
    }
    case Preset::thisYear:
        return between(thisYear / January / 1, thisYear / December / 31, calendar);
    case Preset::lastYear:
        return between((thisYear - years(1)) / January / 1, (thisYear - years(1)) / December / 31,
                       calendar);
    }
    return std::nullopt;
}

std::optional<year_month_day> ReportPeriod::parseDate(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    int parts[3] = {0, 0, 0};
    const std::size_t starts[3] = {0, 5, 8};
    const std::size_t lengths[3] = {4, 2, 2};
    for (int i = 0; i < 3; ++i) {
        for (std::size_t at = starts[i]; at < starts[i] + lengths[i]; ++at) {
            if (text[at] < '0' || text[at] > '9') {
                return std::nullopt;
            }
            parts[i] = parts[i] * 10 + (text[at] - '0');
        }
    }
    const year_month_day date{year(parts[0]), month(static_cast<unsigned>(parts[1])),
                              day(static_cast<unsigned>(parts[2]))};
    if (!date.ok()) {
        return std::nullopt;
    }
    return date;
}

std::string ReportPeriod::dateText(year_month_day date) {
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text;
}

} // namespace vorlane
