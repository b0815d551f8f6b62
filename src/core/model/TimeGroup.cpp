// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/TimeGroup.h"

#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <array>

namespace vorlane {

Decimal TimeGroup::totalCost() const {
    Decimal total;
    for (const ServiceRecord* service : services) {
        total += service->effectiveMonthlyCost();
    }
    return total;
}

std::vector<TimeGroup> groupByTimeframe(const std::vector<ServiceRecord*>& services,
                                        const UserCalendar& calendar) {
    enum Band { expired, critical, thisWeek, thisMonth, later, bandCount };
    std::array<TimeGroup, bandCount> bands{{
        {"Expired", {}},
        {"Critical (1 day)", {}},
        {"This Week", {}},
        {"This Month", {}},
        {"Later", {}},
    }};
    const Instant now = calendar.now();
    for (ServiceRecord* service : services) {
        if (!service->expirationDate) {
            continue;
        }
        const Instant date = *service->expirationDate;
        Band band = critical;
        if (date < now) {
            band = expired;
        } else if (const std::optional<int> days = calendar.daysBetween(now, date); days) {
            band = *days <= 1 ? critical : *days <= 7 ? thisWeek : *days <= 30 ? thisMonth : later;
        }
        bands[band].services.push_back(service);
    }
    std::vector<TimeGroup> groups;
    for (TimeGroup& group : bands) {
        if (!group.services.empty()) {
            groups.push_back(std::move(group));
        }
    }
    return groups;
}

} // namespace vorlane
