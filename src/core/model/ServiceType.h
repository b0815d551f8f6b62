// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "model/RawEnumeration.h"

#include <string_view>

namespace vorlane {

// The kind of a service record.
class ServiceType : public RawEnumeration<ServiceType, 16> {
public:
    enum Value : std::uint8_t {
        vps,
        dedicatedServer,
        sharedHosting,
        resellerHosting,
        cpanel,
        plesk,
        wordpress,
        websiteAdmin,
        domainRegistrar,
        mailbox,
        database,
        cloudAccount,
        sshAccess,
        ftpAccess,
        apiKey,
        customSecret,
    };

    static constexpr std::array<std::string_view, caseCount> rawValues{
        "vps",          "dedicatedServer", "sharedHosting", "resellerHosting", "cpanel",
        "plesk",        "wordpress",       "websiteAdmin",  "domainRegistrar", "mailbox",
        "database",     "cloudAccount",    "sshAccess",     "ftpAccess",       "apiKey",
        "customSecret",
    };

    constexpr ServiceType(Value value)
        : RawEnumeration(value) {}
    constexpr Value value() const { return static_cast<Value>(index()); }

    using RawEnumeration::allCases;

    std::string_view label() const;
    std::string_view icon() const;
    Palette::Color tintColor() const;
};

} // namespace vorlane

template <>
struct std::hash<vorlane::ServiceType> : vorlane::RawEnumerationHash<vorlane::ServiceType> {};
