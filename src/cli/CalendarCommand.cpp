// SPDX-License-Identifier: GPL-3.0-or-later
#include "CalendarCommand.h"

#include "CliVault.h"
#include "QtPreferenceStore.h"
#include "calendar/RenewalsCalendarFile.h"
#include "util/PrivateFile.h"

#include <QCoreApplication>

#include <ostream>

namespace vorlane {

std::string_view CalendarCommand::name() const {
    return "calendar";
}

std::string_view CalendarCommand::usage() const {
    return "calendar [FILE|-]          the renewals as an iCalendar file (standard output for -)";
}

int CalendarCommand::run(CliInvocation& invocation) {
    const auto& arguments = invocation.arguments;
    if (arguments.size() > 1 ||
        (!arguments.empty() && arguments[0].starts_with("-") && arguments[0] != "-")) {
        invocation.err << "vorlane-cli calendar: usage: " << usage() << "\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    // The reminders the user chose in the program: its own settings file.
    QCoreApplication::setOrganizationName(QStringLiteral("Vorlane"));
    QCoreApplication::setApplicationName(QStringLiteral("vorlane"));
    const QtPreferenceStore preferences;
    const RenewalsCalendar::Written calendar =
        RenewalsCalendarFile::build(vault->store(), preferences, vault->calendar());
    if (arguments.empty() || arguments[0] == "-") {
        invocation.out << calendar.text << std::flush;
        return 0;
    }
    if (const auto error = PrivateFile::write(arguments[0], calendar.text)) {
        invocation.err << "vorlane-cli calendar: cannot write " << arguments[0] << ": " << *error
                       << "\n";
        return 1;
    }
    if (calendar.eventCount == 0) {
        invocation.err << "vorlane-cli calendar: no service has an expiration date: the calendar "
                          "is empty\n";
    }
    return 0;
}

} // namespace vorlane
