// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `vorlane-cli verify-backup FILE [--password-file F]`: opens the backup with its password and
// checks that every secret its records name is in it. Prints when it was made and how many
// organizations, services and secrets it holds, then each missing secret by its service. Exit
// status 0 only when the backup opens and is whole. Needs no vault and shows no secret.
class VerifyBackupCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
