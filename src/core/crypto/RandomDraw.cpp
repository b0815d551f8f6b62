// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/RandomDraw.h"

#include <openssl/rand.h>

namespace vorlane {

RandomDraw::~RandomDraw() {
    m_block.fill(0);
}

std::optional<std::uint8_t> RandomDraw::nextByte() {
    if (m_used == m_block.size()) {
        if (RAND_bytes(m_block.data(), static_cast<int>(m_block.size())) != 1) {
            return std::nullopt;
        }
        m_used = 0;
    }
    const std::uint8_t byte = m_block[m_used];
    m_block[m_used++] = 0;
    return byte;
}

std::optional<std::uint32_t> RandomDraw::below(std::uint32_t count) {
    if (count == 0) {
        return std::nullopt;
    }
    int bytes = 1;
    while (bytes < 4 && (std::uint64_t{1} << (8 * bytes)) < count) {
        ++bytes;
    }
    const std::uint64_t range = std::uint64_t{1} << (8 * bytes);
    const std::uint64_t limit = range - range % count;
    for (;;) {
        std::uint64_t value = 0;
        for (int i = 0; i < bytes; ++i) {
            const std::optional<std::uint8_t> byte = nextByte();
            if (!byte) {
                return std::nullopt;
            }
            value = (value << 8) | *byte;
        }
        if (value < limit) {
            return static_cast<std::uint32_t>(value % count);
        }
    }
}

} // namespace vorlane
