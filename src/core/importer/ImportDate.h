// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <optional>
#include <string_view>

namespace vorlane {

// The date encodings of the exports the importer reads. Each gives nothing for text it does not
// accept entirely, so that a damaged date is reported rather than guessed.
class ImportDate {
public:
    // ISO 8601 as the password managers write it: "2024-05-01T10:20:30Z", with optional
    // fractions of a second and an optional "+02:00" offset instead of "Z" (no zone reads as
    // UTC); a space may stand for the "T".
    static std::optional<Instant> iso8601(std::string_view text);
    // KeePass 2 XML: ISO 8601 (older databases) or, in KDBX 4 databases, base64 of a
    // little-endian 64-bit count of seconds since 0001-01-01T00:00:00Z.
    static std::optional<Instant> keepass(std::string_view text);
};

} // namespace vorlane
