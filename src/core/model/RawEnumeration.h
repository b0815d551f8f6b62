// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace vorlane {

// Shared shape of the vault's closed vocabularies: a value that is persisted as its raw string
// (always identical to the case name), built back from that string only on an exact,
// case-sensitive match. `Derived` declares `enum Value` and `static constexpr rawValues`, both in
// declaration order.
template <typename Derived, std::size_t N> class RawEnumeration {
public:
    static constexpr std::size_t caseCount = N;

    // The case whose raw value is exactly `raw`; nothing for any other string.
    static std::optional<Derived> fromRaw(std::string_view raw) {
        for (std::size_t i = 0; i < N; ++i) {
            if (Derived::rawValues[i] == raw) {
                return Derived(static_cast<typename Derived::Value>(i));
            }
        }
        return std::nullopt;
    }

    std::string_view rawValue() const { return Derived::rawValues[m_index]; }
    // Identity in pickers and lists: the raw value.
    std::string_view id() const { return rawValue(); }
    constexpr std::size_t index() const { return m_index; }

    friend constexpr bool operator==(Derived a, Derived b) { return a.index() == b.index(); }

protected:
    constexpr explicit RawEnumeration(std::size_t index)
        : m_index(static_cast<std::uint8_t>(index)) {}

    // Every case in declaration order; exposed by the enumerations that are iterable.
    static constexpr std::array<Derived, N> allCases() {
        return []<std::size_t... I>(std::index_sequence<I...>) {
            return std::array<Derived, N>{Derived(static_cast<typename Derived::Value>(I))...};
        }
        (std::make_index_sequence<N>{});
    }

private:
    std::uint8_t m_index;
};

template <typename E> struct RawEnumerationHash {
    std::size_t operator()(E value) const noexcept {
        return std::hash<std::size_t>{}(value.index());
    }
};

} // namespace vorlane
