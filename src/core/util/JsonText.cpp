// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/JsonText.h"

#include <cmath>
#include <cstdint>

namespace vorlane {

std::string JsonText::compact(const nlohmann::ordered_json& value) {
    // Invalid UTF-8 (which no text of ours should hold) becomes U+FFFD instead of an exception.
    const std::string plain =
        value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    // Outside strings compact JSON has no "/", so every one of them is inside a string and the
    // escaped form means the same text to any reader.
    std::string escaped;
    escaped.reserve(plain.size() + plain.size() / 16);
    for (const char c : plain) {
        if (c == '/') {
            escaped.push_back('\\');
        }
        escaped.push_back(c);
    }
    return escaped;
}

nlohmann::ordered_json JsonText::number(double value) {
    // Within 2^53 every whole double is exactly an integer; beyond that (and for NaN and the
    // infinities, which no instant of ours gives) the double stays as it is.
    constexpr double exactLimit = 9007199254740992.0;
    if (std::isfinite(value) && std::trunc(value) == value && std::fabs(value) <= exactLimit) {
        return static_cast<std::int64_t>(value);
    }
    return value;
}

} // namespace vorlane
