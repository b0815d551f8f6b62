// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/RawEnumeration.h"

#include <optional>
#include <string_view>

namespace vorlane {

// How often a service is paid.
class BillingCycle : public RawEnumeration<BillingCycle, 8> {
public:
    enum Value : std::uint8_t {
        monthly,
        quarterly,
        semiAnnual,
        annual,
        biennial,
        triennial,
        oneTime,
        none,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "monthly", "quarterly", "semiAnnual", "annual", "biennial", "triennial", "oneTime", "none",
    };

    constexpr BillingCycle(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view label() const;

    // The number of months a stored yearly amount is spread over to give a monthly cost: 12 for
    // every cycle of a year or shorter (the yearly field already holds a whole year), the cycle's
    // length for the multi-year ones, nothing for one-time and no billing (they cost 0 a month).
    std::optional<int> yearlyCostSpreadMonths() const;

    // The months one renewal moves an expiration date ahead: the cycle's own length, and a year
    // for one-time and no billing (a one-time purchase renewed by hand is treated as yearly).
    int renewalMonths() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::BillingCycle> : vorlane::RawEnumerationHash<vorlane::BillingCycle> {};
