// SPDX-License-Identifier: GPL-3.0-or-later
#include "VerifyBackupCommand.h"

#include "CliBackupInput.h"
#include "backup/BackupReport.h"
#include "util/DateText.h"
#include "util/SystemClock.h"
#include "util/UserCalendar.h"

#include <ostream>

namespace vorlane {

std::string_view VerifyBackupCommand::name() const {
    return "verify-backup";
}

std::string_view VerifyBackupCommand::usage() const {
    return "verify-backup FILE [--password-file F]\n"
           "                             open a backup and check that it holds every secret\n"
           "                             its records name (exit status 0 only then)";
}

int VerifyBackupCommand::run(CliInvocation& invocation) {
    std::ostream& err = invocation.err;
    const auto arguments = CliBackupInput::parse(invocation.arguments, name(), false, err);
    if (!arguments) {
        return 2;
    }
    const std::optional<std::string> bytes = CliBackupInput::readFile(arguments->file, name(), err);
    if (!bytes) {
        return 1;
    }
    std::optional<BackupContents> contents =
        CliBackupInput::open(*bytes, arguments->passwordFile, name(), err);
    if (!contents) {
        return 1;
    }
    CliBackupInput::wipeSecrets(*contents);
    std::ostream& out = invocation.out;
    const SystemClock clock;
    const UserCalendar calendar(clock);
    out << "Backup made "
        << DateText::format(contents->createdAt, DateText::Style::abbreviatedWithTime, calendar)
        << ": " << BackupReport::holds(*contents) << "\n";
    const auto missing = BackupReport::missingSecrets(*contents);
    if (missing.empty()) {
        out << "Every secret its records name is in it.\n";
        return 0;
    }
    out << missing.size() << (missing.size() == 1 ? " secret" : " secrets") << " its records name "
        << (missing.size() == 1 ? "is" : "are") << " not in it:\n";
    for (const BackupReport::MissingSecret& secret : missing) {
        out << "  " << BackupReport::describe(secret) << "\n";
    }
    return 1;
}

} // namespace vorlane
