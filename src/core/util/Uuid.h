// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// A 128-bit identifier. Records are identified by random (version 4) UUIDs; their text is the
// canonical 8-4-4-4-12 form in upper case, which is also what secret identifiers embed.
class Uuid {
public:
    using Bytes = std::array<std::uint8_t, 16>;

    // The nil UUID (all zero): what a record has before it is given an identity.
    constexpr Uuid() = default;
    constexpr explicit Uuid(const Bytes& bytes)
        : m_bytes(bytes) {}

    // A fresh random version-4 UUID from the system's secure random source.
    static Uuid generate();
    // Canonical text in either case; nothing for anything else.
    static std::optional<Uuid> fromString(std::string_view text);

    std::string toString() const;
    const Bytes& bytes() const { return m_bytes; }
    bool isNil() const;

    friend constexpr bool operator==(const Uuid&, const Uuid&) = default;
    friend constexpr auto operator<=>(const Uuid&, const Uuid&) = default;

private:
    Bytes m_bytes{};
};

} // namespace vorlane

template <> struct std::hash<vorlane::Uuid> {
    std::size_t operator()(const vorlane::Uuid& uuid) const noexcept;
};
