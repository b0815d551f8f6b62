// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace vorlane {

// Uniform random choices from the system's secure random source (OpenSSL's RAND_bytes), for
// everything that picks characters or words of a secret. Each draw takes as few bytes as cover
// the range and throws away values at or above the largest multiple of the range's size, since
// keeping them (a plain modulo) would favour the first choices whenever the size is not a power
// of two. Bytes are fetched in blocks and wiped when the object goes. One thread at a time.
class RandomDraw {
public:
    RandomDraw() = default;
    ~RandomDraw();
    RandomDraw(const RandomDraw&) = delete;
    RandomDraw& operator=(const RandomDraw&) = delete;

    // A number from 0 to `count` - 1, every one equally likely; nothing when `count` is 0 or the
    // random source fails.
    std::optional<std::uint32_t> below(std::uint32_t count);

private:
    std::optional<std::uint8_t> nextByte();

    std::array<std::uint8_t, 256> m_block{};
    std::size_t m_used = m_block.size();
};

} // namespace vorlane
