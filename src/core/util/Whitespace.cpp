// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Whitespace.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <limits>

namespace vorlane {

std::string_view trimmed(std::string_view text) {
    // ICU's UTF-8 macros count in 32 bits; nobody types or pastes a text of 2 GiB.
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        return text;
    }
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    // One pass forward: where the first character that is not whitespace starts, and where
    // the last one ends.
    std::int32_t begin = -1;
    std::int32_t end = 0;
    std::int32_t i = 0;
    while (i < length) {
        const std::int32_t start = i;
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        if (c < 0 || !u_isUWhiteSpace(c)) {
            begin = begin < 0 ? start : begin;
            end = i;
        }
    }
    if (begin < 0) {
        return {};
    }
    return text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

bool isBlank(std::string_view text) {
    return trimmed(text).empty();
}

} // namespace vorlane
