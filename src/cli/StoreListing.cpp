// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreListing.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/StoreJson.h"
#include "util/IsoDate.h"

#include <iomanip>
#include <ostream>

namespace vorlane {

void StoreListing::services(std::ostream& out, const std::vector<ServiceRecord*>& services,
                            const UserCalendar& calendar, bool json) {
    for (const ServiceRecord* service : services) {
        if (json) {
            out << StoreJson::service(*service, calendar) << "\n";
            continue;
        }
        out << std::left << std::setw(32) << service->title << "  " << std::setw(24)
            << (service->organization ? service->organization->name : "") << "  " << std::setw(24)
            << service->displaySubtitle() << "  ";
        if (service->expirationDate) {
            out << IsoDate::utc(*service->expirationDate).substr(0, 10) << " ("
                << service->expirationState(calendar).displayName() << ")";
        }
        out << "\n";
    }
}

void StoreListing::organizations(std::ostream& out, const std::vector<Organization*>& organizations,
                                 bool json) {
    for (const Organization* organization : organizations) {
        if (json) {
            out << StoreJson::organization(*organization) << "\n";
            continue;
        }
        out << std::left << std::setw(32) << organization->name << "  " << std::setw(24)
            << organization->projectName << "  " << organization->services.size() << " services\n";
    }
}

} // namespace vorlane
