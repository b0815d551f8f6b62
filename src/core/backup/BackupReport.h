// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"
#include "backup/RestoreSummary.h"

#include <string>
#include <vector>

namespace vorlane {

// What a backup holds, said the same way by the window and by vorlane-cli. Pure functions of
// the contents; any thread.
class BackupReport {
public:
    // A secret that a service of the backup names and the backup does not hold (the keyring did
    // not have it when the backup was made).
    struct MissingSecret {
        std::string serviceTitle;
        std::string kind;    // "password", "API key" or "one-time code secret"
        std::string account; // the identifier it is kept under in the secret store
    };

    // Every secret the services name that is not among the contents' secrets, in the order of
    // the services (password, API key, one-time code secret each). Empty when the backup is whole.
    static std::vector<MissingSecret> missingSecrets(const BackupContents& contents);

    // "Backed up 27 organizations and 312 services with 298 secrets." (archived services
    // counted), followed by " 2 secrets were not in the keyring and are missing from the backup."
    // when some are.
    static std::string backedUp(const BackupContents& contents);

    // "27 organizations, 312 services, 298 secrets": what a backup holds, before it is restored.
    static std::string holds(const BackupContents& contents);

    // "Added 12 records, updated 3 and left 1 as it was; wrote 298 secrets to the keyring.":
    // what a restore did (records of every kind counted together).
    static std::string restored(const RestoreSummary& summary);

    // `the password of "GitHub"`: one missing secret, for a line of its own.
    static std::string describe(const MissingSecret& missing);
};

} // namespace vorlane
