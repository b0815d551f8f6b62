// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `calendar [FILE|-]`: the renewals as an iCalendar file (what File → Export Renewals Calendar…
// writes), with an alarm per reminder the user chose in the program's settings. To FILE (0600,
// written whole or not at all), or to standard output for "-" or no argument.
class CalendarCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
