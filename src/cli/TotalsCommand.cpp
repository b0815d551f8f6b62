// SPDX-License-Identifier: GPL-3.0-or-later
#include "TotalsCommand.h"

#include "CliVault.h"
#include "store/StoreJson.h"

#include <ostream>

namespace vorlane {

std::string_view TotalsCommand::name() const {
    return "totals";
}

std::string_view TotalsCommand::usage() const {
    return "totals                     active services, monthly and yearly cost";
}

int TotalsCommand::run(CliInvocation& invocation) {
    if (!invocation.arguments.empty()) {
        invocation.err << "vorlane-cli totals: takes no arguments\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    const DataStore& store = vault->store();
    if (invocation.json) {
        invocation.out << StoreJson::totals(store.totalActiveServices(), store.totalMonthlyCost(),
                                            store.totalYearlyCost())
                       << "\n";
    } else {
        invocation.out << "Active services: " << store.totalActiveServices() << "\n"
                       << "Monthly cost:    " << store.totalMonthlyCost().toString() << "\n"
                       << "Yearly cost:     " << store.totalYearlyCost().toString() << "\n";
    }
    return 0;
}

} // namespace vorlane
