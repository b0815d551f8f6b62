// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/Base64.h"

#include <array>

namespace vorlane {

namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int, 256> makeDecodeTable() {
    std::array<int, 256> table{};
    table.fill(-1);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<int>(i);
    }
    return table;
}

constexpr std::array<int, 256> decodeTable = makeDecodeTable();

} // namespace

std::string Base64::encode(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        const std::uint32_t group =
            (std::uint32_t{bytes[i]} << 16) | (std::uint32_t{bytes[i + 1]} << 8) | bytes[i + 2];
        text.push_back(alphabet[(group >> 18) & 0x3F]);
        text.push_back(alphabet[(group >> 12) & 0x3F]);
        text.push_back(alphabet[(group >> 6) & 0x3F]);
        text.push_back(alphabet[group & 0x3F]);
    }
    const std::size_t rest = bytes.size() - i;
    if (rest > 0) {
        std::uint32_t group = std::uint32_t{bytes[i]} << 16;
        if (rest == 2) {
            group |= std::uint32_t{bytes[i + 1]} << 8;
        }
        text.push_back(alphabet[(group >> 18) & 0x3F]);
        text.push_back(alphabet[(group >> 12) & 0x3F]);
        text.push_back(rest == 2 ? alphabet[(group >> 6) & 0x3F] : '=');
        text.push_back('=');
    }
    return text;
}

std::optional<Bytes> Base64::decode(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::size_t padding = 0;
    if (!text.empty() && text.back() == '=') {
        padding = text[text.size() - 2] == '=' ? 2 : 1;
    }
    Bytes bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        const std::size_t digits = last ? 4 - padding : 4;
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 4; ++j) {
            int value = 0;
            if (j < digits) {
                value = decodeTable[static_cast<unsigned char>(text[i + j])];
                if (value < 0) {
                    return std::nullopt; // also catches "=" anywhere but the end
                }
            }
            group = (group << 6) | static_cast<std::uint32_t>(value);
        }
        // The bits below the last whole byte must be zero, or two texts would decode alike.
        if ((digits == 3 && (group & 0xFF) != 0) || (digits == 2 && (group & 0xFFFF) != 0)) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(group >> 16));
        if (digits >= 3) {
            bytes.push_back(static_cast<std::uint8_t>(group >> 8));
        }
        if (digits == 4) {
            bytes.push_back(static_cast<std::uint8_t>(group));
        }
    }
    return bytes;
}

} // namespace vorlane
