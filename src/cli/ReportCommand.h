// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `report`: one organization's cost report over a period (this year unless --from and --to say
// otherwise, both days included), as CSV on standard output or as a PDF file.
class ReportCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
