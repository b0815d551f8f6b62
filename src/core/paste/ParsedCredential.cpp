// SPDX-License-Identifier: GPL-3.0-or-later
#include "paste/ParsedCredential.h"

#include <algorithm>
#include <charconv>

namespace vorlane {

std::optional<std::int64_t> ParsedCredential::decimalInteger(std::string_view text) {
    std::string_view digits = text;
    const bool negative = !digits.empty() && digits.front() == '-';
    if (!digits.empty() && (digits.front() == '+' || negative)) {
        digits.remove_prefix(1);
    }
    // from_chars alone would also take a second sign after the first one.
    if (digits.empty() ||
        !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    // Parsing the sign together with the digits lets the most negative value through.
    const std::string_view number = negative ? text : digits;
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc() || end != number.data() + number.size()) {
        return std::nullopt;
    }
    return value;
}

} // namespace vorlane
