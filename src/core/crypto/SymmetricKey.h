// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace vorlane {

// A 256-bit AES key. Its bytes are wiped when it is destroyed or moved from, so a key never
// outlives its use in freed memory. Not copyable: a copy would be one more place to wipe.
class SymmetricKey {
public:
    static constexpr std::size_t size = 32;

    // Exactly `size` bytes; nothing for any other length.
    static std::optional<SymmetricKey> fromBytes(std::span<const std::uint8_t> bytes);
    // A key from the system's secure random source; nothing if that source fails.
    static std::optional<SymmetricKey> random();

    SymmetricKey(SymmetricKey&& other) noexcept;
    SymmetricKey& operator=(SymmetricKey&& other) noexcept;
    SymmetricKey(const SymmetricKey&) = delete;
    SymmetricKey& operator=(const SymmetricKey&) = delete;
    ~SymmetricKey();

    std::span<const std::uint8_t, size> bytes() const { return m_bytes; }

private:
    SymmetricKey() = default;
    void wipe();

    std::array<std::uint8_t, size> m_bytes{};
};

} // namespace vorlane
