// SPDX-License-Identifier: GPL-3.0-or-later
#include "ListCommand.h"

#include "CliVault.h"
#include "StoreListing.h"
#include "backup/InventoryCsv.h"
#include "model/Organization.h"
#include "store/SearchText.h"
#include "store/StoreJson.h"

#include <optional>
#include <ostream>

namespace vorlane {

std::string_view ListCommand::name() const {
    return "list";
}

std::string_view ListCommand::usage() const {
    return "list [--organization NAME] [--archived]\n"
           "                             every service (of one organization), by title\n"
           "  list --csv                 the inventory: every service, archived ones too, as\n"
           "                             the spreadsheet CSV that import reads back, no secrets";
}

int ListCommand::run(CliInvocation& invocation) {
    std::optional<std::string> organization;
    bool archived = false;
    bool csv = false;
    const auto& arguments = invocation.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--organization" && i + 1 < arguments.size()) {
            organization = SearchText::fold(arguments[++i]);
        } else if (arguments[i] == "--archived") {
            archived = true;
        } else if (arguments[i] == "--csv") {
            csv = true;
        } else {
            invocation.err << "vorlane-cli list: unexpected \"" << arguments[i]
                           << "\" (see --help)\n";
            return 2;
        }
    }
    // The inventory is the whole vault in one format: a filter or a second format would make
    // a file that looks complete and is not.
    if (csv && (organization || archived || invocation.json)) {
        invocation.err << "vorlane-cli list: --csv prints every service and takes no other "
                          "option\n";
        return 2;
    }
    auto vault = CliVault::open(invocation);
    if (!vault) {
        return 1;
    }
    if (csv) {
        invocation.out << InventoryCsv::text(vault->store(), vault->calendar());
        return 0;
    }
    std::vector<ServiceRecord*> services;
    for (ServiceRecord* service : vault->store().fetchAllServices(archived)) {
        if (!organization || (service->organization &&
                              SearchText::fold(service->organization->name) == *organization)) {
            services.push_back(service);
        }
    }
    if (!invocation.json) {
        StoreListing::services(invocation.out, services, vault->calendar(), false);
        return 0;
    }
    for (const ServiceRecord* service : services) {
        invocation.out << StoreJson::serviceWithAllFields(*service, vault->calendar()) << "\n";
    }
    return 0;
}

} // namespace vorlane
