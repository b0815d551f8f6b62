// SPDX-License-Identifier: GPL-3.0-or-later
#include "SearchCommand.h"

#include "CliVault.h"
#include "StoreListing.h"

#include <ostream>

namespace vorlane {

std::string_view SearchCommand::name() const {
    return "search";
}

std::string_view SearchCommand::usage() const {
    return "search QUERY               organizations and services matching QUERY";
}

int SearchCommand::run(CliInvocation& invocation) {
    if (invocation.arguments.size() != 1 || invocation.arguments[0].empty()) {
        invocation.err << "vorlane-cli search: needs one non-empty QUERY (quote it if it has "
                          "spaces)\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    const std::string& query = invocation.arguments[0];
    StoreListing::organizations(invocation.out, vault->store().searchOrganizations(query),
                                invocation.json);
    StoreListing::services(invocation.out, vault->store().search(query), vault->calendar(),
                           invocation.json);
    return 0;
}

} // namespace vorlane
