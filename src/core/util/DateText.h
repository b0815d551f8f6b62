// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <string>
#include <string_view>

namespace vorlane {

class UserCalendar;

// How a date is written for people on screen: the locale's own pattern for the style, in the
// user's time zone (the calendar's), so that 03:00 UTC on 5 March reads "Mar 4" in New York.
// An empty locale id means the process's default locale. Empty text when ICU cannot format.
class DateText {
public:
    enum class Style {
        monthDay,            // "Mar 4"
        abbreviated,         // "Mar 4, 2026" (en_US), "04.03.2026" (de_DE)
        abbreviatedWithTime, // "Mar 4, 2026, 10:00 PM"
    };

    static std::string format(Instant instant, Style style, const UserCalendar& calendar,
                              std::string_view localeId = {});

    // The instant's day in the user's calendar as YYYY-MM-DD, whatever the locale: for files
    // that spreadsheets and scripts read back (and file names). Empty when ICU cannot tell.
    static std::string isoDay(Instant instant, const UserCalendar& calendar);
};

} // namespace vorlane
