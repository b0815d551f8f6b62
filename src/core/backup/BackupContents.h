// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

// A backed-up record with the identity of its owner in place of the store's pointer (the
// record's own `organization` / `service` pointer is null here).
struct BackedUpService {
    ServiceRecord record;
    std::optional<Uuid> organizationId; // nothing for a service of no organization
};

struct BackedUpShare {
    ShareRecord record;
    Uuid organizationId;
};

struct BackedUpPayment {
    PaymentRecord record;
    Uuid serviceId;
};

// Everything one backup holds: every record of the vault with every field (archived ones and
// logos included), the secrets the records name, and the names of those that the secret store
// did not have when the backup was made. Plain values, owned by whoever holds it; safe to move
// to another thread.
struct BackupContents {
    Instant createdAt;
    std::string schemaVersion;               // the vault's schema when it was backed up ("1.1.0")
    std::vector<Organization> organizations; // `services` and `shareHistory` empty; `logoData` set
    std::vector<BackedUpService> services;
    std::vector<BackedUpShare> shares;
    std::vector<BackedUpPayment> payments;
    // Secret text by its account in the secret store (a record's `secretKeychainID`,
    // `apiKeyKeychainID` or `totpKeychainID`).
    std::map<std::string, std::string> secrets;
    // Accounts a record names that had no item in the secret store, sorted.
    std::vector<std::string> missingSecrets;
};

} // namespace vorlane
