// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `vorlane-cli totp SERVICE`: after the user authenticates on the terminal, the service's current
// one-time code and, on a second line, the seconds it stays valid; with --json
// {"code":"123456","validFor":17}.
class TotpCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
