// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupReport.h"

#include <utility>

namespace vorlane {

namespace {

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace

std::vector<BackupReport::MissingSecret>
BackupReport::missingSecrets(const BackupContents& contents) {
    std::vector<MissingSecret> missing;
    for (const BackedUpService& service : contents.services) {
        const ServiceRecord& record = service.record;
        for (const auto& [account, kind] :
             {std::pair{&record.secretKeychainID, "password"},
              std::pair{&record.apiKeyKeychainID, "API key"},
              std::pair{&record.totpKeychainID, "one-time code secret"}}) {
            if (!account->empty() && !contents.secrets.contains(*account)) {
                missing.push_back({record.title, kind, *account});
            }
        }
    }
    return missing;
}

std::string BackupReport::backedUp(const BackupContents& contents) {
    std::string text = "Backed up " +
                       counted(contents.organizations.size(), "organization", "organizations") +
                       " and " + counted(contents.services.size(), "service", "services") +
                       " with " + counted(contents.secrets.size(), "secret", "secrets") + ".";
    const std::size_t missing = missingSecrets(contents).size();
    if (missing > 0) {
        text += " " + counted(missing, "secret was", "secrets were") + " not in the keyring and " +
                (missing == 1 ? "is" : "are") + " missing from the backup.";
    }
    return text;
}

std::string BackupReport::holds(const BackupContents& contents) {
    return counted(contents.organizations.size(), "organization", "organizations") + ", " +
           counted(contents.services.size(), "service", "services") + ", " +
           counted(contents.secrets.size(), "secret", "secrets");
}

std::string BackupReport::restored(const RestoreSummary& summary) {
    return "Added " + counted(summary.added, "record", "records") + ", updated " +
           std::to_string(summary.updated) + " and left " + std::to_string(summary.left) +
           (summary.left == 1 ? " as it was" : " as they were") + "; wrote " +
           counted(summary.secretsWritten, "secret", "secrets") + " to the keyring.";
}

std::string BackupReport::describe(const MissingSecret& missing) {
    return "the " + missing.kind + " of \"" + missing.serviceTitle + "\"";
}

} // namespace vorlane
