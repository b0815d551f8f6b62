// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "model/RawEnumeration.h"

#include <string_view>

namespace vorlane {

// The stored status of a service.
class ServiceStatus : public RawEnumeration<ServiceStatus, 4> {
public:
    enum Value : std::uint8_t {
        active,
        warning,
        expired,
        archived,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "active",
        "warning",
        "expired",
        "archived",
    };

    constexpr ServiceStatus(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view displayName() const;
    Palette::Color color() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::ServiceStatus> : vorlane::RawEnumerationHash<vorlane::ServiceStatus> {};
