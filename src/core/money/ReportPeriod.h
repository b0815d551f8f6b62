// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

class UserCalendar;

// A span of whole days of the user's calendar, both ends included: what a cost report covers.
// `start` is the first moment of the first day and `end` the first moment after the last one, in
// the user's time zone, so a payment or renewal at any time of the last day is inside.
class ReportPeriod {
public:
    enum class Preset { thisMonth, lastMonth, thisQuarter, thisYear, lastYear };

    // The preset around the calendar's now; nothing when the calendar cannot place it.
    static std::optional<ReportPeriod> preset(Preset preset, const UserCalendar& calendar);
    // From `first` to `last`, both included; nothing when `last` is before `first`.
    static std::optional<ReportPeriod> between(std::chrono::year_month_day first,
                                               std::chrono::year_month_day last,
                                               const UserCalendar& calendar);
    // A date written `YYYY-MM-DD` (a real day of the Gregorian calendar); nothing otherwise.
    static std::optional<std::chrono::year_month_day> parseDate(std::string_view text);
    static std::string dateText(std::chrono::year_month_day date); // YYYY-MM-DD

    Instant start() const { return m_start; }
    Instant end() const { return m_end; }
    std::chrono::year_month_day first() const { return m_first; }
    std::chrono::year_month_day last() const { return m_last; }
    bool contains(Instant instant) const { return instant >= m_start && instant < m_end; }

private:
    ReportPeriod() = default;

    std::chrono::year_month_day m_first;
    std::chrono::year_month_day m_last;
    Instant m_start;
    Instant m_end;
};

} // namespace vorlane
