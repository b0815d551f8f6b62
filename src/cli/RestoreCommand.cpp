// SPDX-License-Identifier: GPL-3.0-or-later
#include "RestoreCommand.h"

#include "CliBackupInput.h"
#include "CliVault.h"
#include "TerminationSignals.h"
#include "backup/BackupReport.h"
#include "backup/BackupRestore.h"
#include "store/VaultLocation.h"

#include <QCoreApplication>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <ostream>

namespace vorlane {

namespace {

// Secrets written per step, sent to the keyring together: small enough that Ctrl+C is taken
// within a moment, large enough that the keyring always has work waiting.
constexpr std::size_t secretsPerStep = 64;

} // namespace

std::string_view RestoreCommand::name() const {
    return "restore";
}

std::string_view RestoreCommand::usage() const {
    return "restore FILE [--password-file F] [--merge]\n"
           "                             bring a backup's records and secrets back (into a vault\n"
           "                             with records only with --merge: newer copies win, "
           "nothing\n"
           "                             is deleted)";
}

int RestoreCommand::run(CliInvocation& invocation) {
    std::ostream& err = invocation.err;
    const auto arguments = CliBackupInput::parse(invocation.arguments, name(), true, err);
    if (!arguments) {
        return 2;
    }
    const std::optional<std::string> bytes = CliBackupInput::readFile(arguments->file, name(), err);
    if (!bytes) {
        return 1;
    }
    // An existing vault is looked at before the password is asked, so that a refusal comes
    // first; a new one is made only once the backup has opened, so that a wrong password
    // leaves no empty vault behind.
    const std::string vaultPath = VaultLocation::resolve(invocation.vaultPath);
    std::unique_ptr<CliVault> vault;
    if (std::filesystem::exists(vaultPath)) {
        vault = CliVault::open(vaultPath, err);
        if (!vault) {
            return 1;
        }
        const DataStore& store = vault->store();
        if (!arguments->merge &&
            (!store.fetchOrganizations(true).empty() || store.countServices(true) > 0)) {
            err << "vorlane-cli restore: the vault " << vaultPath
                << " already has records; nothing was changed. Add --merge to bring in what it "
                   "lacks and the backup's newer copies (nothing is deleted).\n";
            return 1;
        }
    }
    std::optional<BackupContents> contents =
        CliBackupInput::open(*bytes, arguments->passwordFile, name(), err);
    if (!contents) {
        return 1;
    }
    if (!vault) {
        vault = CliVault::open(vaultPath, err);
        if (!vault) {
            CliBackupInput::wipeSecrets(*contents);
            return 1;
        }
    }

    // Ctrl+C, a closed terminal or a kill ends the run between two steps, undone.
    TerminationSignals signals;
    bool interrupted = false;
    QObject::connect(&signals, &TerminationSignals::terminationRequested,
                     [&interrupted](int) { interrupted = true; });
    signals.listen();

    BackupRestore restore(vault->store(), std::move(*contents));
    const bool showProgress = isatty(STDERR_FILENO) == 1;
    while (!restore.finished()) {
        restore.step(secretsPerStep);
        if (showProgress) {
            err << "\rWriting secrets to the keyring: " << restore.done() << " of "
                << restore.total() << std::flush;
        }
        QCoreApplication::processEvents();
        if (interrupted && !restore.finished()) {
            restore.cancel();
        }
    }
    if (showProgress) {
        err << "\n";
    }
    if (restore.error()) {
        err << "vorlane-cli restore: " << *restore.error()
            << " The vault and the keyring are as they were.\n";
        return interrupted ? 130 : 1;
    }
    invocation.out << BackupReport::restored(restore.summary()) << "\n";
    return 0;
}

} // namespace vorlane
