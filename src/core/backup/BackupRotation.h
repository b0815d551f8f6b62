// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// The automatic backups a folder keeps: files named as BackupFile names them
// ("Vorlane-Backup-YYYY-MM-DD.vorlanebackup"), ordered by the date in the name. The folder may be
// one the user shares with other programs (a synced folder, a USB stick): every other file,
// folder or link in it is never looked at twice, let alone removed. Any thread.
class BackupRotation {
public:
    // Whether `fileName` is exactly a backup's name, with a date of digits.
    static bool isBackupName(std::string_view fileName);

    // The names of the backups (regular files only) in `folder`, newest first; the reason when
    // the folder cannot be read.
    static Result<std::vector<std::string>, std::string> backupsIn(const std::string& folder);

    // Removes every backup but the newest `keep` (at least one is always kept). Nothing when
    // that is done; otherwise the reason, the first that stopped a removal.
    static std::optional<std::string> keepNewest(const std::string& folder, int keep);
};

} // namespace vorlane
