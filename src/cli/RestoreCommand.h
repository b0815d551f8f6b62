// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `vorlane-cli restore FILE [--password-file F] [--merge]`: the backup's records into the vault
// of --vault (created when there is no file yet) and its secrets into the keyring, as one
// transaction that Ctrl+C undoes. A vault that already has records is merged into only with
// --merge: what it lacks is added, a record in both is replaced only by a newer copy, nothing is
// deleted.
//
// No system password is asked: a restore writes secrets and shows none, and the backup password
// already proves that the person holds the backup. Progress goes to stderr when it is a terminal.
class RestoreCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
