// SPDX-License-Identifier: GPL-3.0-or-later
// vorlane-cli: the vault from a terminal, for scripts, demos and the recipient of an export.

#include "BackupCommand.h"
#include "CalendarCommand.h"
#include "CliCommand.h"
#include "DemoCommand.h"
#include "ExpiredCommand.h"
#include "ExpiringCommand.h"
#include "HealthCommand.h"
#include "ImportCommand.h"
#include "ListCommand.h"
#include "OpenBundleCommand.h"
#include "ParsePasteCommand.h"
#include "ProcessHardening.h"
#include "ReportCommand.h"
#include "RestoreCommand.h"
#include "SearchCommand.h"
#include "TotalsCommand.h"
#include "TotpCommand.h"
#include "VerifyBackupCommand.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using vorlane::CliCommand;

std::vector<std::unique_ptr<CliCommand>> makeCommands() {
    std::vector<std::unique_ptr<CliCommand>> commands;
    commands.push_back(std::make_unique<vorlane::OpenBundleCommand>());
    commands.push_back(std::make_unique<vorlane::ParsePasteCommand>());
    commands.push_back(std::make_unique<vorlane::DemoCommand>());
    commands.push_back(std::make_unique<vorlane::SearchCommand>());
    commands.push_back(std::make_unique<vorlane::ListCommand>());
    commands.push_back(std::make_unique<vorlane::ImportCommand>());
    commands.push_back(std::make_unique<vorlane::ExpiringCommand>());
    commands.push_back(std::make_unique<vorlane::ExpiredCommand>());
    commands.push_back(std::make_unique<vorlane::CalendarCommand>());
    commands.push_back(std::make_unique<vorlane::TotalsCommand>());
    commands.push_back(std::make_unique<vorlane::ReportCommand>());
    commands.push_back(std::make_unique<vorlane::TotpCommand>());
    commands.push_back(std::make_unique<vorlane::HealthCommand>());
    commands.push_back(std::make_unique<vorlane::BackupCommand>());
    commands.push_back(std::make_unique<vorlane::RestoreCommand>());
    commands.push_back(std::make_unique<vorlane::VerifyBackupCommand>());
    return commands;
}

// The manual page is made from this text by help2man, and the shell completions read the
// commands and their options from it: a line two spaces in for each form of a command, starting
// with its name; a description that does not fit after it goes on lines indented further.
void printHelp(const std::vector<std::unique_ptr<CliCommand>>& commands) {
    std::cout << "Usage: vorlane-cli [--vault PATH] [--json] COMMAND [ARGUMENTS]\n"
                 "Work on the Vorlane vault without its window: search it, list renewals and\n"
                 "costs, make a demo vault, back it up with its secrets and restore it, and\n"
                 "open an export bundle sent to you. The vault's passwords and API keys stay\n"
                 "in the desktop's Secret Service (or sealed in a backup): no command prints\n"
                 "them. Without --vault the vault is vault.sqlite in $VORLANE_DATA_DIR,\n"
                 "else in $XDG_DATA_HOME/vorlane, else in ~/.local/share/vorlane.\n\n"
                 "Commands:\n";
    for (const auto& command : commands) {
        std::cout << "  " << command->usage() << "\n";
    }
    std::cout << "\nOptions:\n"
                 "  --vault PATH   use the vault file at PATH instead of the default one\n"
                 "  --json         print one JSON object per line\n"
                 "  -h, --help     show this help\n"
                 "  --version      show the version\n";
}

} // namespace

int main(int argc, char* argv[]) {
    vorlane::ProcessHardening::disableCoreDumps();
    const auto commands = makeCommands();

    vorlane::CliInvocation invocation{{}, false, {}, std::cin, std::cout, std::cerr};
    std::string commandName;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            printHelp(commands);
            return 0;
        }
        if (argument == "--version") {
            std::cout << "vorlane-cli " << VORLANE_VERSION << "\n";
            return 0;
        }
        if (argument == "--json") {
            invocation.json = true;
        } else if (argument == "--vault") {
            if (i + 1 >= argc) {
                std::cerr << "vorlane-cli: --vault needs a path\n";
                return 2;
            }
            invocation.vaultPath = argv[++i];
        } else if (commandName.empty()) {
            commandName = argument;
        } else {
            invocation.arguments.push_back(argument);
        }
    }
    if (commandName.empty()) {
        printHelp(commands);
        return 2;
    }
    for (const auto& command : commands) {
        if (command->name() == commandName) {
            return command->run(invocation);
        }
    }
    std::cerr << "vorlane-cli: unknown command \"" << commandName << "\" (see --help)\n";
    return 2;
}
