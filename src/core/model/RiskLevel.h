// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/RawEnumeration.h"

#include <string_view>

namespace vorlane {

// How sensitive a service is, in order of increasing risk.
class RiskLevel : public RawEnumeration<RiskLevel, 4> {
public:
    enum Value : std::uint8_t {
        low,
        medium,
        high,
        critical,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "low",
        "medium",
        "high",
        "critical",
    };

    constexpr RiskLevel(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view displayName() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::RiskLevel> : vorlane::RawEnumerationHash<vorlane::RiskLevel> {};
