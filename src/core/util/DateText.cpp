#include "util/DateText.h"

#include "util/UserCalendar.h"

#include <unicode/datefmt.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <memory>

namespace vorlane {

std::string DateText::format(Instant instant, Style style, const UserCalendar& calendar,
                             std::string_view localeId) {
    const icu::Locale locale =
        localeId.empty() ? icu::Locale::getDefault() : icu::Locale(std::string(localeId).c_str());
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateFormat> formatter;
    if (style == Style::abbreviated) {
        formatter.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, locale));
    } else if (style == Style::abbreviatedWithTime) {
        formatter.reset(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium,
                                                                icu::DateFormat::kShort, locale));
    } else {
        // The locale's best pattern for "abbreviated month and day", in its own order.
        std::unique_ptr<icu::DateTimePatternGenerator> generator(
            icu::DateTimePatternGenerator::createInstance(locale, status));
        if (U_FAILURE(status)) {
            return {};
        }
        const icu::UnicodeString pattern = generator->getBestPattern(u"MMMd", status);
        if (U_FAILURE(status)) {
            return {};
        }
        formatter = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
    }
    if (!formatter || U_FAILURE(status)) {
        return {};
    }
    const std::string zone = calendar.timeZoneId();
    formatter->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)));
    icu::UnicodeString text;
    formatter->format(static_cast<UDate>(instant.time_since_epoch().count()), text);
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

} // namespace vorlane
