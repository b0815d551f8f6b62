// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// How the backup commands of vorlane-cli get a backup password and open a backup file. The
// password comes from --password-file (its first line) or is asked at the terminal without echo;
// it is always the backup's own password, never the system one. Every failure is written to
// `err` as "vorlane-cli COMMAND: reason" and returns nothing. Main thread.
class CliBackupInput {
public:
    struct Arguments {
        std::string file;
        std::optional<std::string> passwordFile;
        bool merge = false;
    };
    // FILE and --password-file F, and --merge where `takesMerge`; nothing (the reason on `err`)
    // for anything else.
    static std::optional<Arguments> parse(const std::vector<std::string>& arguments,
                                          std::string_view command, bool takesMerge,
                                          std::ostream& err);

    // The password for a new backup: two typings at the terminal, or the file's first line,
    // held to the same bar as the window's (length and strength, with its words). At the
    // terminal a refused password is asked for again, three times at most.
    static std::optional<std::string> newPassword(const std::optional<std::string>& passwordFile,
                                                  std::string_view command, std::ostream& err);

    // The file at `path`, once it is known to be a backup this version can open (so that no
    // password is asked for a file that is not one).
    static std::optional<std::string> readFile(const std::string& path, std::string_view command,
                                               std::ostream& err);

    // The contents of the backup `bytes`, with its password from the file or asked once.
    static std::optional<BackupContents> open(const std::string& bytes,
                                              const std::optional<std::string>& passwordFile,
                                              std::string_view command, std::ostream& err);

    // Overwrites the secrets' bytes before the contents go.
    static void wipeSecrets(BackupContents& contents);
};

} // namespace vorlane
