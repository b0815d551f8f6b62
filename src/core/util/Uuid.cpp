// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Uuid.h"

#include <openssl/rand.h>

#include <cstring>
#include <random>

namespace vorlane {

namespace {

// Digit values by character, -1 for anything that is not a hexadecimal digit: a table rather
// than comparisons, whose branches the random digits of ids keep mispredicting.
constexpr std::array<std::int8_t, 256> hexValues = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (int digit = 0; digit < 10; ++digit) {
        values['0' + digit] = static_cast<std::int8_t>(digit);
    }
    for (int letter = 0; letter < 6; ++letter) {
        values['a' + letter] = static_cast<std::int8_t>(10 + letter);
        values['A' + letter] = static_cast<std::int8_t>(10 + letter);
    }
    return values;
}();

int hexValue(char c) {
    return hexValues[static_cast<unsigned char>(c)];
}

} // namespace

Uuid Uuid::generate() {
    Bytes bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        // OpenSSL's generator only fails when it cannot seed; the kernel's source still can.
        std::random_device device;
        for (auto& byte : bytes) {
            byte = static_cast<std::uint8_t>(device());
        }
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    return Uuid(bytes);
}

std::optional<Uuid> Uuid::fromString(std::string_view text) {
    // Opening a vault parses two ids per service: the digit pairs' positions are fixed, so the
    // loop walks them without testing each index for a dash.
    static constexpr std::array<std::uint8_t, 16> pairStarts{0,  2,  4,  6,  9,  11, 14, 16,
                                                             19, 21, 24, 26, 28, 30, 32, 34};
    if (text.size() != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' ||
        text[23] != '-') {
        return std::nullopt;
    }
    Bytes bytes{};
    for (std::size_t byte = 0; byte < bytes.size(); ++byte) {
        const int high = hexValue(text[pairStarts[byte]]);
        const int low = hexValue(text[pairStarts[byte] + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes[byte] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return Uuid(bytes);
}

std::string Uuid::toString() const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < m_bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text.push_back('-');
        }
        text.push_back(digits[m_bytes[i] >> 4]);
        text.push_back(digits[m_bytes[i] & 0x0F]);
    }
    return text;
}

bool Uuid::isNil() const {
    return *this == Uuid();
}

} // namespace vorlane

std::size_t std::hash<vorlane::Uuid>::operator()(const vorlane::Uuid& uuid) const noexcept {
    // Random UUIDs are already uniformly distributed: any 8 bytes make a good hash.
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    std::memcpy(&a, uuid.bytes().data(), 8);
    std::memcpy(&b, uuid.bytes().data() + 8, 8);
    return static_cast<std::size_t>(a ^ (b * 0x9E3779B97F4A7C15ULL));
}
