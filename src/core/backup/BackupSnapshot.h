// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"
#include "util/Instant.h"

namespace vorlane {

class DataStore;

// Takes the vault's contents for a backup: copies every record (logos loaded) and reads every
// secret the records name from the secret store in batches (one call per batch, not one per
// secret). A secret the store does not have is listed in `missingSecrets`; nothing fails for it.
// Main thread (the store's).
class BackupSnapshot {
public:
    // Nothing when the secret store cannot be read at all (locked, unreachable): a backup
    // without any secret is not made silently.
    static std::optional<BackupContents> take(DataStore& store, Instant now);
};

} // namespace vorlane
