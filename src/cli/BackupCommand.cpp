// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupCommand.h"

#include "CliBackupInput.h"
#include "CliVault.h"
#include "TerminalAuthentication.h"
#include "WipeOnExit.h"
#include "backup/BackupFile.h"
#include "backup/BackupReport.h"
#include "backup/BackupSnapshot.h"

#include <unistd.h>

#include <ostream>

namespace vorlane {

std::string_view BackupCommand::name() const {
    return "backup";
}

std::string_view BackupCommand::usage() const {
    return "backup FILE [--password-file F]\n"
           "                             seal the vault and every secret into FILE (asks for\n"
           "                             your system password, then a backup password twice)";
}

int BackupCommand::run(CliInvocation& invocation) {
    std::ostream& err = invocation.err;
    const auto arguments = CliBackupInput::parse(invocation.arguments, name(), false, err);
    if (!arguments) {
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    // The backup holds every secret in the clear once opened: the same proof of presence as
    // revealing one of them.
    if (!TerminalAuthentication::authenticate("Authenticate to back up your vault", err)) {
        return 1;
    }
    std::optional<std::string> password =
        CliBackupInput::newPassword(arguments->passwordFile, name(), err);
    if (!password) {
        return 1;
    }
    const WipeOnExit wipePassword(*password);

    const bool showProgress = isatty(STDERR_FILENO) == 1;
    if (showProgress) {
        err << "Reading the vault and its secrets\xE2\x80\xA6\n";
    }
    std::optional<BackupContents> contents =
        BackupSnapshot::take(vault->store(), vault->calendar().now());
    if (!contents) {
        err << "vorlane-cli backup: the keyring could not be read, so no backup was made\n";
        return 1;
    }
    if (showProgress) {
        err << "Encrypting the backup\xE2\x80\xA6\n";
    }
    const std::optional<std::string> error =
        BackupFile::write(arguments->file, *contents, *password);
    CliBackupInput::wipeSecrets(*contents);
    if (error) {
        err << "vorlane-cli backup: cannot write " << arguments->file << ": " << *error << "\n";
        return 1;
    }
    invocation.out << BackupReport::backedUp(*contents) << "\n";
    for (const BackupReport::MissingSecret& missing : BackupReport::missingSecrets(*contents)) {
        invocation.out << "  missing: " << BackupReport::describe(missing) << "\n";
    }
    return 0;
}

} // namespace vorlane
