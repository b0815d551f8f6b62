// SPDX-License-Identifier: GPL-3.0-or-later
#include "money/RenewalDates.h"

#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <algorithm>

namespace vorlane {

std::vector<Instant> renewalDatesBetween(const ServiceRecord& service, Instant from, Instant to,
                                         const UserCalendar& calendar) {
    std::vector<Instant> dates;
    if (!service.expirationDate || to <= from) {
        return dates;
    }
    const Instant expiration = *service.expirationDate;
    const BillingCycle cycle = service.billingCycle();
    if (cycle == BillingCycle::oneTime || cycle == BillingCycle::none) {
        if (expiration >= from && expiration < to) {
            dates.push_back(expiration);
        }
        return dates;
    }
    const int step = cycle.renewalMonths();
    const Instant earliest = service.purchaseDate ? std::max(from, *service.purchaseDate) : from;
    // Some ten thousand periods either way is far beyond any report; it only bounds a strange
    // date.
    constexpr int mostPeriods = 10000;
    for (int k = 0; k > -mostPeriods; --k) {
        const std::optional<Instant> date =
            calendar.adding(UserCalendar::Unit::month, k * step, expiration);
        if (!date || *date < earliest) {
            break;
        }
        if (*date < to) {
            dates.push_back(*date);
        }
    }
    std::reverse(dates.begin(), dates.end());
    for (int k = 1; k < mostPeriods; ++k) {
        const std::optional<Instant> date =
            calendar.adding(UserCalendar::Unit::month, k * step, expiration);
        if (!date || *date >= to) {
            break;
        }
        if (*date >= earliest) {
            dates.push_back(*date);
        }
    }
    return dates;
}

} // namespace vorlane
