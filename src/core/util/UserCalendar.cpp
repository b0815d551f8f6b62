#include "util/UserCalendar.h"

#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

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

} // namespace vorlane
