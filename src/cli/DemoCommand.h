// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"

namespace vorlane {

// `demo PATH [--services N]`: creates a new vault at PATH full of realistic made-up clients and
// services (200 unless told), for trying Vorlane out and for the benchmarks. Refuses a PATH that
// already exists. Passwords and API keys are stored only when a Secret Service is reachable.
class DemoCommand final : public CliCommand {
public:
    std::string_view name() const override;
    std::string_view usage() const override;
    int run(CliInvocation& invocation) override;
};

} // namespace vorlane
