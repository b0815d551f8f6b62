// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/OrgDetailTab.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, OrgDetailTab::caseCount> labels{
    "Overview",  "Servers",     "Hosting",  "Websites", "Domains", "Email",
    "Databases", "Credentials", "Expenses", "Renewals", "Notes",   "Sharing",
};

constexpr std::array<std::string_view, OrgDetailTab::caseCount> icons{
    "square.grid.2x2",
    "server.rack",
    "globe",
    "safari",
    "network",
    "envelope",
    "cylinder",
    "key",
    "dollarsign.circle",
    "calendar.badge.clock",
    "note.text",
    "paperplane",
};

constexpr std::array<ServiceType, 2> serverTypes{ServiceType::vps, ServiceType::dedicatedServer};
constexpr std::array<ServiceType, 4> hostingTypes{ServiceType::sharedHosting,
                                                  ServiceType::resellerHosting, ServiceType::cpanel,
                                                  ServiceType::plesk};
constexpr std::array<ServiceType, 2> websiteTypes{ServiceType::wordpress,
                                                  ServiceType::websiteAdmin};
constexpr std::array<ServiceType, 1> domainTypes{ServiceType::domainRegistrar};
constexpr std::array<ServiceType, 1> emailTypes{ServiceType::mailbox};
constexpr std::array<ServiceType, 1> databaseTypes{ServiceType::database};
// The three access kinds first, then the two secret kinds.
constexpr std::array<ServiceType, 5> credentialTypes{ServiceType::sshAccess, ServiceType::ftpAccess,
                                                     ServiceType::cloudAccount, ServiceType::apiKey,
                                                     ServiceType::customSecret};

} // namespace

std::string_view OrgDetailTab::label() const {
    return labels[index()];
}

std::string_view OrgDetailTab::icon() const {
    return icons[index()];
}

std::span<const ServiceType> OrgDetailTab::serviceTypes() const {
    switch (value()) {
    case servers:
        return serverTypes;
    case hosting:
        return hostingTypes;
    case websites:
        return websiteTypes;
    case domains:
        return domainTypes;
    case email:
        return emailTypes;
    case databases:
        return databaseTypes;
    case credentials:
        return credentialTypes;
    case overview:
    case expenses:
    case renewals:
    case notes:
    case sharing:
        break;
    }
    return {};
}

} // namespace vorlane
