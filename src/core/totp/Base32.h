// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"

#include <optional>
#include <string_view>

namespace vorlane {

// Base32 (RFC 4648 section 6, "A"–"Z" and "2"–"7"), the encoding of one-time code secrets.
// Secrets are copied by hand from a setup page, so decoding forgives what people type: either
// case, spaces and hyphens between groups, and missing or present "=" padding at the end.
class Base32 {
public:
    // Nothing for any other character, padding in the middle, or a length that no whole number
    // of bytes encodes to.
    static std::optional<Bytes> decode(std::string_view text);
};

} // namespace vorlane
