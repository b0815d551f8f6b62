// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

// Writes iCalendar (RFC 5545) content lines: every line ends in CRLF and is folded so that no
// line is longer than 75 octets, never inside a UTF-8 sequence; TEXT values are escaped so that
// no value holds a raw line break. Knows nothing of what the calendar says. Not thread-safe.
class IcsWriter {
public:
    // "NAME:value" with `value` written as it is (dates, durations, fixed words).
    void raw(std::string_view name, std::string_view value);
    // "NAME:value" with `value` escaped as TEXT (\\, \;, \, and \n for any line break; other
    // control characters, which the format does not allow, are left out).
    void text(std::string_view name, std::string_view value);

    static std::string escaped(std::string_view value);

    const std::string& content() const { return m_content; }
    std::string take() { return std::move(m_content); }

private:
    void line(std::string_view name, std::string_view value);

    std::string m_content;
};

} // namespace vorlane
