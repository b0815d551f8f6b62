// SPDX-License-Identifier: GPL-3.0-or-later
#include "CliServiceLookup.h"

#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "util/Uuid.h"

#include <unicode/unistr.h>

#include <ostream>

namespace vorlane {

namespace {

icu::UnicodeString folded(const std::string& text) {
    return icu::UnicodeString::fromUTF8(text).foldCase();
}

} // namespace

ServiceRecord* CliServiceLookup::find(DataStore& store, const std::string& idOrTitle,
                                      std::ostream& err) {
    if (const std::optional<Uuid> id = Uuid::fromString(idOrTitle)) {
        if (ServiceRecord* service = store.service(*id)) {
            return service;
        }
    }
    const icu::UnicodeString wanted = folded(idOrTitle);
    std::vector<ServiceRecord*> matches;
    for (ServiceRecord* service : store.fetchAllServices(true)) {
        if (folded(service->title) == wanted) {
            matches.push_back(service);
        }
    }
    if (matches.size() == 1) {
        return matches.front();
    }
    if (matches.empty()) {
        err << "vorlane-cli: no service has the id or title \"" << idOrTitle << "\"\n";
    } else {
        err << "vorlane-cli: " << matches.size() << " services are titled \"" << idOrTitle
            << "\"; name one by its id:";
        for (const ServiceRecord* service : matches) {
            err << " " << service->id.toString();
        }
        err << "\n";
    }
    return nullptr;
}

} // namespace vorlane
