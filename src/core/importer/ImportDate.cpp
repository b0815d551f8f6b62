// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportDate.h"

#include "crypto/Base64.h"

#include <charconv>
#include <chrono>
#include <cstdint>

namespace vorlane {

namespace {

// Seconds from 0001-01-01T00:00:00Z to the Unix epoch.
constexpr std::int64_t secondsBeforeUnixEpoch = 62135596800;

// Exactly `count` ASCII digits at `at`, read as a number.
std::optional<int> digits(std::string_view text, std::size_t at, std::size_t count) {
    if (at + count > text.size()) {
        return std::nullopt;
    }
    int value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return std::nullopt;
        }
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

} // namespace

std::optional<Instant> ImportDate::iso8601(std::string_view text) {
    using namespace std::chrono;
    const auto year = digits(text, 0, 4);
    const auto month = digits(text, 5, 2);
    const auto day = digits(text, 8, 2);
    if (!year || !month || !day || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    const year_month_day date{std::chrono::year(*year), std::chrono::month(*month),
                              std::chrono::day(*day)};
    if (!date.ok()) {
        return std::nullopt;
    }
    Instant instant = time_point_cast<milliseconds>(sys_days(date));
    if (text.size() == 10) {
        return instant;
    }
    if (text[10] != 'T' && text[10] != ' ') {
        return std::nullopt;
    }
    const auto hour = digits(text, 11, 2);
    const auto minute = digits(text, 14, 2);
    const auto second = digits(text, 17, 2);
    if (!hour || !minute || !second || text[13] != ':' || text[16] != ':' || *hour > 23 ||
        *minute > 59 || *second > 60) {
        return std::nullopt;
    }
    instant += hours(*hour) + minutes(*minute) + seconds(*second);
    std::size_t at = 19;
    if (at < text.size() && text[at] == '.') {
        ++at;
        int fraction = 0;
        int scale = 100;
        const std::size_t start = at;
        while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
            fraction += (text[at] - '0') * scale;
            scale /= 10;
            ++at;
        }
        if (at == start) {
            return std::nullopt;
        }
        instant += milliseconds(fraction);
    }
    const std::string_view zone = text.substr(at);
    if (zone.empty() || zone == "Z") {
        return instant;
    }
    const auto offsetHours = digits(zone, 1, 2);
    const auto offsetMinutes = digits(zone, 4, 2);
    if (zone.size() != 6 || (zone[0] != '+' && zone[0] != '-') || zone[3] != ':' || !offsetHours ||
        !offsetMinutes) {
        return std::nullopt;
    }
    const minutes offset = hours(*offsetHours) + minutes(*offsetMinutes);
    return zone[0] == '+' ? instant - offset : instant + offset;
}

std::optional<Instant> ImportDate::keepass(std::string_view text) {
    if (auto instant = iso8601(text)) {
        return instant;
    }
    const auto bytes = Base64::decode(text);
    if (!bytes || bytes->size() != 8) {
        return std::nullopt;
    }
    std::uint64_t count = 0;
    for (std::size_t i = 8; i-- > 0;) {
        count = (count << 8) | (*bytes)[i];
    }
    // Beyond year 9999 is no date a database means (and would overflow the milliseconds).
    constexpr std::uint64_t latest = 315537897599; // 9999-12-31T23:59:59Z
    if (count > latest) {
        return std::nullopt;
    }
    const std::int64_t unixSeconds = static_cast<std::int64_t>(count) - secondsBeforeUnixEpoch;
    return Instant(std::chrono::milliseconds(unixSeconds * 1000));
}

} // namespace vorlane
