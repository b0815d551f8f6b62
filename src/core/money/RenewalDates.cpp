// SPDX-License-Identifier: GPL-3.0-or-later
#include "money/RenewalDates.h"

#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <algorithm>
#include <chrono>

namespace vorlane {

namespace {

// A month is 28 to 31 days long, and a daylight-saving change moves a local time by an hour or
// two: with a day's margin, these bound where the date `months` calendar months from `expiration`
// can fall. The calendar's exact arithmetic is slow next to this, and a vault has many services
// whose dates come nowhere near the window, so only the periods whose bounds reach it are asked.
constexpr std::chrono::milliseconds day = std::chrono::hours(24);

// The first whole number of periods (of `stepLength` each) at or above `span / stepLength`.
long long ceilDivide(std::chrono::milliseconds span, std::chrono::milliseconds stepLength) {
    const long long quotient = span / stepLength;
    return span % stepLength > std::chrono::milliseconds::zero() ? quotient + 1 : quotient;
}

} // namespace

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
    if (to <= earliest) {
        return dates;
    }
    // Period k falls on the expiration date plus k steps (k < 0 before it), somewhere between
    // k·step short months and k·step long ones from it. The first period whose latest possible
    // date reaches `earliest`, and the last whose earliest possible date is before `to`:
    const std::chrono::milliseconds shortStep = step * 28 * day;
    const std::chrono::milliseconds longStep = step * 31 * day;
    const std::chrono::milliseconds before = earliest - expiration - day;
    const long long first = before > std::chrono::milliseconds::zero()
                                ? ceilDivide(before, longStep)
                                : ceilDivide(before, shortStep);
    const std::chrono::milliseconds after = to - expiration + day;
    const long long last = after > std::chrono::milliseconds::zero()
                               ? ceilDivide(after, shortStep) - 1
                               : ceilDivide(after, longStep) - 1;
    // Some ten thousand periods either way is far beyond any report; it only bounds a strange
    // date.
    constexpr long long mostPeriods = 10000;
    for (long long k = std::max(first, -mostPeriods); k <= std::min(last, mostPeriods); ++k) {
        const std::optional<Instant> date =
            k == 0 ? std::optional(expiration)
                   : calendar.adding(UserCalendar::Unit::month, static_cast<int>(k) * step,
                                     expiration);
        if (date && *date >= earliest && *date < to) {
            dates.push_back(*date);
        }
    }
    return dates;
}

} // namespace vorlane
