// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Clock.h"
#include "util/Instant.h"

#include <unicode/uversion.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace vorlane {

// The user's calendar in the user's time zone, together with the clock that says what "now" is.
// Day counts and date arithmetic go through ICU so that a day across a daylight-saving change is
// still one day and 31 January plus one month is the end of February.
// Thread-safe: calls are serialised on an internal mutex. Does not own the clock.
class UserCalendar {
public:
    enum class Unit { day, month, year };

    // A day and time on the user's wall clock.
    struct LocalTime {
        int year = 0;
        int month = 0; // 1 to 12
        int day = 0;
        int minuteOfDay = 0; // 0 to 1439
        friend bool operator==(const LocalTime&, const LocalTime&) = default;
    };

    // An empty zone id means the user's zone as the system reports it (TZ, /etc/localtime); an
    // unknown id gives ICU's "Etc/Unknown" zone, which behaves as UTC.
    explicit UserCalendar(const Clock& clock, std::string_view timeZoneId = {});
    ~UserCalendar();
    UserCalendar(const UserCalendar&) = delete;
    UserCalendar& operator=(const UserCalendar&) = delete;

    Instant now() const { return m_clock.now(); }
    const Clock& clock() const { return m_clock; }
    std::string timeZoneId() const;

    // Whole calendar days from `from` to `to`, truncated toward zero (negative once `to` is
    // earlier). Nothing when the calendar cannot compute it (dates out of ICU's range).
    std::optional<int> daysBetween(Instant from, Instant to) const;
    std::optional<int> daysFromNow(Instant to) const { return daysBetween(now(), to); }

    // `amount` units after `instant` (before it when negative), keeping the time of day; a day of
    // the month that the target month lacks becomes that month's last day.
    std::optional<Instant> adding(Unit unit, int amount, Instant instant) const;

    // The wall-clock day and minute of `instant`; nothing when ICU cannot compute it.
    std::optional<LocalTime> localTime(Instant instant) const;

    // `minuteOfDay` on the day of `instant`, in the user's zone (the next valid minute where a
    // daylight-saving change skips it).
    std::optional<Instant> atMinuteOfDay(Instant instant, int minuteOfDay) const;

    // Midnight that begins the first day of `instant`'s month, in the user's zone (or the first
    // moment of that day where a daylight-saving change skips midnight).
    std::optional<Instant> startOfMonth(Instant instant) const;

private:
    // The day count when a cheap estimate can be confirmed exactly; nothing otherwise. Called
    // with m_mutex held.
    std::optional<int> confirmedDayEstimate(Instant from, Instant to) const;

    const Clock& m_clock;
    mutable std::mutex m_mutex;
    std::unique_ptr<icu::Calendar> m_calendar;
};

} // namespace vorlane
