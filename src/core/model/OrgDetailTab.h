// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/RawEnumeration.h"
#include "model/ServiceType.h"

#include <span>
#include <string_view>

namespace vorlane {

// The tabs of the organization detail screen. A tab with service kinds lists the organization's
// services of those kinds; every service kind belongs to exactly one tab.
class OrgDetailTab : public RawEnumeration<OrgDetailTab, 12> {
public:
    enum Value : std::uint8_t {
        overview,
        servers,
        hosting,
        websites,
        domains,
        email,
        databases,
        credentials,
        expenses,
        renewals,
        notes,
        sharing,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "overview",  "servers",     "hosting",  "websites", "domains", "email",
        "databases", "credentials", "expenses", "renewals", "notes",   "sharing",
    };

    constexpr OrgDetailTab(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view label() const;
    std::string_view icon() const;
    // The kinds this tab lists, in the order any per-kind grouping on the tab uses; empty for the
    // tabs that are not service lists. The span refers to static storage.
    std::span<const ServiceType> serviceTypes() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::OrgDetailTab> : vorlane::RawEnumerationHash<vorlane::OrgDetailTab> {};
