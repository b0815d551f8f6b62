// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `vorlane-cli backup FILE [--password-file F]`: after the user authenticates on the terminal
// (as the window asks before a backup), the backup password (twice, or from the file), then the
// whole vault with every secret its records name sealed into FILE (atomic, 0600). Prints what the
// backup holds and names any secret the keyring did not have.
class BackupCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
