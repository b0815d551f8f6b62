// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace vorlane {

// Owned binary data: payloads, salts, sealed boxes.
using Bytes = std::vector<std::uint8_t>;

// The bytes of a text, without a copy (UTF-8 text and raw bytes are the same thing here).
inline std::span<const std::uint8_t> asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace vorlane
