// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/IsoDate.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace vorlane {

std::string IsoDate::utc(Instant instant) {
    using namespace std::chrono;
    const auto day = floor<days>(instant);
    const year_month_day date(day);
    const hh_mm_ss time(instant - day);
    const int year = static_cast<int>(date.year());
    std::array<char, 64> text{};
    int length = std::snprintf(
        text.data(), text.size(),
        year >= 0 && year <= 9999 ? "%04d-%02u-%02uT%02d:%02d:%02d"
                                  : "%+07d-%02u-%02uT%02d:%02d:%02d",
        year, static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()));
    if (const auto millis = time.subseconds().count(); millis != 0) {
        length +=
            std::snprintf(text.data() + length, text.size() - static_cast<std::size_t>(length),
                          ".%03d", static_cast<int>(millis));
    }
    return std::string(text.data(), static_cast<std::size_t>(length)) + "Z";
}

} // namespace vorlane
