// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorlane {

// Standard base64 (RFC 4648 section 4: "+" and "/", "=" padding, no line breaks), the encoding
// of every binary member of an export bundle and of a generated key's text.
class Base64 {
public:
    static std::string encode(std::span<const std::uint8_t> bytes);
    // Strict: the length must be a multiple of four, only the standard alphabet, padding only at
    // the end, and no stray bits in the last character; nothing otherwise. Whitespace is not
    // skipped, so a damaged bundle is reported rather than half read.
    static std::optional<Bytes> decode(std::string_view text);
};

} // namespace vorlane
