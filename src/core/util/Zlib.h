// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorlane {

// Whole-buffer compression in the zlib format (RFC 1950: a two-byte header, a deflate stream,
// an Adler-32 of the data), which every language's standard library reads.
class Zlib {
public:
    // `text` compressed at zlib's default level; nothing only when zlib cannot get memory.
    static std::optional<Bytes> compress(std::string_view text);
    // The data of one whole zlib stream; nothing when the bytes are not exactly one complete
    // stream (damaged, cut short, or followed by more bytes).
    static std::optional<std::string> decompress(std::span<const std::uint8_t> compressed);
};

} // namespace vorlane
