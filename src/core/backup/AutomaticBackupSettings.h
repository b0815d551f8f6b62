// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

class PreferenceStore;

// What the user chose in Settings → Backups: whether the vault is backed up by itself, into which
// folder, and how many of those backups the folder keeps. Kept in the preference store; a plain
// value otherwise. The password is not here: it lives in the secret store (AutomaticBackup).
struct AutomaticBackupSettings {
    struct Key {
        static constexpr std::string_view enabled = "backupAutomatically";
        static constexpr std::string_view folder = "backupFolder";
        static constexpr std::string_view keepCount = "backupKeepCount";
    };
    // Ten days of changes at one backup a day; a year's worth at most, since every file holds
    // the whole vault and a synced folder pays for each.
    static constexpr int defaultKeepCount = 10;
    static constexpr int minimumKeepCount = 1;
    static constexpr int maximumKeepCount = 365;

    bool enabled = false;
    std::string folder; // empty: none chosen yet
    int keepCount = defaultKeepCount;

    // The stored choices; defaults for keys never written, a count outside the range brought
    // back into it.
    static AutomaticBackupSettings read(const PreferenceStore& preferences);
    // Writes every key (the count brought into the range).
    void write(PreferenceStore& preferences) const;
    static int clampedKeepCount(int count);

    friend bool operator==(const AutomaticBackupSettings&,
                           const AutomaticBackupSettings&) = default;
};

} // namespace vorlane
