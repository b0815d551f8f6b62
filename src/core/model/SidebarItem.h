// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/RawEnumeration.h"

#include <string_view>

namespace vorlane {

// The destinations of the main window's sidebar, in sidebar order.
class SidebarItem : public RawEnumeration<SidebarItem, 9> {
public:
    enum Value : std::uint8_t {
        dashboard,
        organizations,
        favorites,
        expiringSoon,
        expired,
        allCredentials,
        allExpenses,
        archive,
        passwordHealth,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "dashboard",      "organizations", "favorites", "expiringSoon",   "expired",
        "allCredentials", "allExpenses",   "archive",   "passwordHealth",
    };

    constexpr SidebarItem(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view displayName() const;
    std::string_view icon() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::SidebarItem> : vorlane::RawEnumerationHash<vorlane::SidebarItem> {};
