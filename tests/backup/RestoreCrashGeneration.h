// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the restore crash test's child restores, generation by generation: the contents of a
// backup holding one new organization "Generation g" (with a logo large enough that saving it
// takes a moment) and its services, each with its password.

#include "backup/BackupContents.h"

#include <string>

namespace vorlane::testing::restoreCrash {

inline constexpr int servicesPerGeneration = 12;

inline std::string organizationName(long generation) {
    return "Generation " + std::to_string(generation);
}

inline std::string password(long generation, int service) {
    return "pw " + std::to_string(generation) + " " + std::to_string(service);
}

inline BackupContents contents(long generation, Instant now) {
    BackupContents contents;
    contents.createdAt = now;
    Organization organization = Organization::created(now);
    organization.name = organizationName(generation);
    organization.logoData = std::vector<std::uint8_t>(256 << 10, std::uint8_t(generation));
    for (int k = 0; k < servicesPerGeneration; ++k) {
        ServiceRecord service = ServiceRecord::created(now);
        service.title = std::to_string(k);
        service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        contents.secrets[service.secretKeychainID] = password(generation, k);
        contents.services.push_back({std::move(service), organization.id});
    }
    contents.organizations.push_back(std::move(organization));
    return contents;
}

} // namespace vorlane::testing::restoreCrash
