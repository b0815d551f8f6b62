// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DateText.h"

#include "util/UserCalendar.h"

#include <unicode/datefmt.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace vorlane {

namespace {

std::unique_ptr<icu::DateFormat> makeFormatter(DateText::Style style, const icu::Locale& locale,
                                               const std::string& zone) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateFormat> formatter;
    if (style == DateText::Style::abbreviated) {
        formatter.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, locale));
    } else if (style == DateText::Style::abbreviatedWithTime) {
        formatter.reset(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium,
                                                                icu::DateFormat::kShort, locale));
    } else {
        // The locale's best pattern for "abbreviated month and day", in its own order.
        std::unique_ptr<icu::DateTimePatternGenerator> generator(
            icu::DateTimePatternGenerator::createInstance(locale, status));
        if (U_FAILURE(status)) {
            return nullptr;
        }
        const icu::UnicodeString pattern = generator->getBestPattern(u"MMMd", status);
        if (U_FAILURE(status)) {
            return nullptr;
        }
        formatter = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
    }
    if (!formatter || U_FAILURE(status)) {
        return nullptr;
    }
    formatter->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)));
    return formatter;
}

} // namespace

std::string DateText::format(Instant instant, Style style, const UserCalendar& calendar,
                             std::string_view localeId) {
    const icu::Locale locale =
        localeId.empty() ? icu::Locale::getDefault() : icu::Locale(std::string(localeId).c_str());
    const std::string zone = calendar.timeZoneId();
    // Building a formatter (a pattern generator above all) costs far more than formatting, and a
    // grid writes a date per card: keep one per style, locale and zone, per thread (formatting
    // is const, the map is not).
    thread_local std::map<std::tuple<Style, std::string, std::string>,
                          std::unique_ptr<icu::DateFormat>>
        formatters;
    auto [entry, inserted] =
        formatters.try_emplace(std::make_tuple(style, std::string(locale.getName()), zone));
    if (inserted) {
        entry->second = makeFormatter(style, locale, zone);
    }
    if (!entry->second) {
        return {};
    }
    icu::UnicodeString text;
    entry->second->format(static_cast<UDate>(instant.time_since_epoch().count()), text);
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

std::string DateText::isoDay(Instant instant, const UserCalendar& calendar) {
    const std::optional<UserCalendar::LocalTime> local = calendar.localTime(instant);
    if (!local) {
        return {};
    }
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", local->year, local->month, local->day);
    return text;
}

} // namespace vorlane
