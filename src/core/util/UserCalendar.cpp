// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UserCalendar.h"

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <climits>
#include <cstdint>

namespace vorlane {

namespace {

UDate toUDate(Instant instant) {
    return static_cast<UDate>(instant.time_since_epoch().count());
}

Instant fromUDate(UDate date) {
    return Instant(std::chrono::milliseconds(static_cast<std::int64_t>(date)));
}

} // namespace

UserCalendar::UserCalendar(const Clock& clock, std::string_view timeZoneId)
    : m_clock(clock) {
    icu::TimeZone* zone =
        timeZoneId.empty()
            ? icu::TimeZone::createDefault()
            : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(icu::StringPiece(
                  timeZoneId.data(), static_cast<std::int32_t>(timeZoneId.size()))));
    UErrorCode status = U_ZERO_ERROR;
    // The calendar adopts the zone. The default locale picks the user's calendar system.
    m_calendar.reset(icu::Calendar::createInstance(zone, icu::Locale::getDefault(), status));
    if (U_FAILURE(status) || !m_calendar) {
        // Only happens when ICU's data is missing; the Gregorian calendar in UTC still counts days.
        status = U_ZERO_ERROR;
        m_calendar.reset(icu::Calendar::createInstance(icu::TimeZone::getGMT()->clone(),
                                                       icu::Locale::getRoot(), status));
    }
}

UserCalendar::~UserCalendar() = default;

std::string UserCalendar::timeZoneId() const {
    std::lock_guard lock(m_mutex);
    icu::UnicodeString id;
    m_calendar->getTimeZone().getID(id);
    std::string text;
    id.toUTF8String(text);
    return text;
}

std::optional<int> UserCalendar::daysBetween(Instant from, Instant to) const {
    std::lock_guard lock(m_mutex);
    if (const std::optional<int> days = confirmedDayEstimate(from, to)) {
        return days;
    }
    UErrorCode status = U_ZERO_ERROR;
    m_calendar->setTime(toUDate(from), status);
    // fieldDifference moves the calendar forward (or back) by whole days without passing `to`,
    // which is exactly "whole days, truncated toward zero" in local time.
    const std::int32_t days = m_calendar->fieldDifference(toUDate(to), UCAL_DATE, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return days;
}

std::optional<int> UserCalendar::confirmedDayEstimate(Instant from, Instant to) const {
    // fieldDifference walks the calendar a day count at a time (some twenty steps for a date a
    // year away), which makes it the cost of every expiration state. The difference of the two
    // local wall-clock times gives the answer almost always; two exact calendar steps confirm it,
    // and the rare case they do not (an hour skipped or repeated by a daylight-saving change at
    // the wrong moment) is left to the full walk.
    UErrorCode status = U_ZERO_ERROR;
    const icu::TimeZone& zone = m_calendar->getTimeZone();
    std::int32_t fromRaw = 0;
    std::int32_t fromDst = 0;
    std::int32_t toRaw = 0;
    std::int32_t toDst = 0;
    zone.getOffset(toUDate(from), false, fromRaw, fromDst, status);
    zone.getOffset(toUDate(to), false, toRaw, toDst, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    constexpr std::int64_t dayMs = 24 * 60 * 60 * 1000;
    const std::int64_t wallDifference = (to.time_since_epoch().count() + toRaw + toDst) -
                                        (from.time_since_epoch().count() + fromRaw + fromDst);
    const std::int64_t estimate = wallDifference / dayMs; // truncated toward zero, like the answer
    if (estimate > INT32_MAX / 2 || estimate < INT32_MIN / 2) {
        return std::nullopt;
    }
    const auto stepped = [&](std::int64_t days) -> std::optional<UDate> {
        m_calendar->setTime(toUDate(from), status);
        m_calendar->add(UCAL_DATE, static_cast<std::int32_t>(days), status);
        const UDate date = m_calendar->getTime(status);
        return U_SUCCESS(status) ? std::optional(date) : std::nullopt;
    };
    // The answer n is the day count that reaches `to` without passing it, while one day more
    // (one day fewer, going back) would pass it.
    const bool forward = to >= from;
    const std::optional<UDate> reached = stepped(estimate);
    const std::optional<UDate> beyond = stepped(forward ? estimate + 1 : estimate - 1);
    if (!reached || !beyond) {
        return std::nullopt;
    }
    const UDate target = toUDate(to);
    const bool confirmed = forward ? (*reached <= target && *beyond > target)
                                   : (*reached >= target && *beyond < target);
    return confirmed ? std::optional(static_cast<int>(estimate)) : std::nullopt;
}

std::optional<Instant> UserCalendar::adding(Unit unit, int amount, Instant instant) const {
    std::lock_guard lock(m_mutex);
    UErrorCode status = U_ZERO_ERROR;
    m_calendar->setTime(toUDate(instant), status);
    const UCalendarDateFields field = unit == Unit::day     ? UCAL_DATE
                                      : unit == Unit::month ? UCAL_MONTH
                                                            : UCAL_YEAR;
    m_calendar->add(field, amount, status);
    const UDate result = m_calendar->getTime(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return fromUDate(result);
}

std::optional<UserCalendar::LocalTime> UserCalendar::localTime(Instant instant) const {
    std::lock_guard lock(m_mutex);
    UErrorCode status = U_ZERO_ERROR;
    m_calendar->setTime(toUDate(instant), status);
    const LocalTime local{
        .year = m_calendar->get(UCAL_EXTENDED_YEAR, status),
        .month = m_calendar->get(UCAL_MONTH, status) + 1,
        .day = m_calendar->get(UCAL_DATE, status),
        .minuteOfDay =
            m_calendar->get(UCAL_HOUR_OF_DAY, status) * 60 + m_calendar->get(UCAL_MINUTE, status),
    };
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return local;
}

std::optional<Instant> UserCalendar::atMinuteOfDay(Instant instant, int minuteOfDay) const {
    std::lock_guard lock(m_mutex);
    UErrorCode status = U_ZERO_ERROR;
    m_calendar->setTime(toUDate(instant), status);
    m_calendar->set(UCAL_HOUR_OF_DAY, minuteOfDay / 60);
    m_calendar->set(UCAL_MINUTE, minuteOfDay % 60);
    m_calendar->set(UCAL_SECOND, 0);
    m_calendar->set(UCAL_MILLISECOND, 0);
    const UDate result = m_calendar->getTime(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return fromUDate(result);
}

std::optional<Instant> UserCalendar::startOfMonth(Instant instant) const {
    std::lock_guard lock(m_mutex);
    UErrorCode status = U_ZERO_ERROR;
    m_calendar->setTime(toUDate(instant), status);
    m_calendar->set(UCAL_DATE, 1);
    m_calendar->set(UCAL_HOUR_OF_DAY, 0);
    m_calendar->set(UCAL_MINUTE, 0);
    m_calendar->set(UCAL_SECOND, 0);
    m_calendar->set(UCAL_MILLISECOND, 0);
    const UDate result = m_calendar->getTime(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return fromUDate(result);
}

} // namespace vorlane
