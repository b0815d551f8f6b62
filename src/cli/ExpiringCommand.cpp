// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpiringCommand.h"

#include "CliVault.h"
#include "StoreListing.h"

#include <charconv>
#include <ostream>

namespace vorlane {

std::string_view ExpiringCommand::name() const {
    return "expiring";
}

std::string_view ExpiringCommand::usage() const {
    return "expiring [--within DAYS]   services expiring within DAYS (30 unless told)";
}

int ExpiringCommand::run(CliInvocation& invocation) {
    int days = 30;
    const auto& arguments = invocation.arguments;
    if (!arguments.empty()) {
        const std::string value = arguments.size() == 2 ? arguments[1] : "";
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), days);
        if (arguments[0] != "--within" || arguments.size() != 2 || error != std::errc() ||
            end != value.data() + value.size() || days < 0 || days > 36500) {
            invocation.err << "vorlane-cli expiring: usage: " << usage()
                           << " (DAYS from 0 to 36500)\n";
            return 2;
        }
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    StoreListing::services(invocation.out, vault->store().fetchExpiringSoon(days),
                           vault->calendar(), invocation.json);
    return 0;
}

} // namespace vorlane
