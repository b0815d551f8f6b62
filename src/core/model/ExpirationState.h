// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "model/RawEnumeration.h"

#include <string_view>

namespace vorlane {

// The computed urgency of a service's expiration date, in order of increasing urgency. Never
// stored, so it has no `allCases`: it is derived by `ServiceRecord::expirationState`.
// Note that `soon` (8 to 30 days) is less urgent than `upcoming` (2 to 7 days).
class ExpirationState : public RawEnumeration<ExpirationState, 6> {
public:
    enum Value : std::uint8_t {
        none,
        normal,
        soon,
        upcoming,
        critical,
        expired,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "none", "normal", "soon", "upcoming", "critical", "expired",
    };

    constexpr ExpirationState(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    std::string_view displayName() const;
    std::string_view icon() const;
    Palette::Color color() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::ExpirationState> : vorlane::RawEnumerationHash<vorlane::ExpirationState> {
};
