// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpiredCommand.h"

#include "CliVault.h"
#include "StoreListing.h"

#include <ostream>

namespace vorlane {

std::string_view ExpiredCommand::name() const {
    return "expired";
}

std::string_view ExpiredCommand::usage() const {
    return "expired                    services whose expiration date has passed";
}

int ExpiredCommand::run(CliInvocation& invocation) {
    if (!invocation.arguments.empty()) {
        invocation.err << "vorlane-cli expired: takes no arguments\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    StoreListing::services(invocation.out, vault->store().fetchExpired(), vault->calendar(),
                           invocation.json);
    return 0;
}

} // namespace vorlane
