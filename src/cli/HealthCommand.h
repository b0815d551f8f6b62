// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `vorlane-cli health`: after the user authenticates on the terminal, the password health report
// of the vault (reused, weak and old secrets, services without a password), counts first.
class HealthCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
