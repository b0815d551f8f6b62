// SPDX-License-Identifier: GPL-3.0-or-later
#include "totp/Base32.h"

#include <cstdint>

namespace vorlane {

namespace {

int valueOf(char c) {
    if (c >= 'A' && c <= 'Z') {
        return c - 'A';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a';
    }
    if (c >= '2' && c <= '7') {
        return c - '2' + 26;
    }
    return -1;
}

} // namespace

std::optional<Bytes> Base32::decode(std::string_view text) {
    Bytes bytes;
    bytes.reserve(text.size() * 5 / 8);
    std::uint32_t buffer = 0;
    int bits = 0;
    std::size_t symbols = 0;
    bool padding = false;
    for (const char c : text) {
        if (c == ' ' || c == '-') {
            continue;
        }
        if (c == '=') {
            padding = true;
            continue;
        }
        const int value = valueOf(c);
        if (value < 0 || padding) {
            return std::nullopt;
        }
        ++symbols;
        buffer = (buffer << 5) | static_cast<std::uint32_t>(value);
        bits += 5;
        if (bits >= 8) {
            bits -= 8;
            bytes.push_back(static_cast<std::uint8_t>(buffer >> bits));
            buffer &= (1u << bits) - 1;
        }
    }
    // Groups of eight symbols encode five bytes; a last group of 1, 3 or 6 symbols encodes no
    // whole number of bytes, so it is a typing mistake rather than a shorter secret.
    const std::size_t rest = symbols % 8;
    if (rest == 1 || rest == 3 || rest == 6) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace vorlane
