// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"

#include <string>
#include <vector>

namespace vorlane {

struct ServiceRecord;
class UserCalendar;

// One band of services by how soon they expire.
struct TimeGroup {
    std::string title;
    std::vector<ServiceRecord*> services; // not owned, in the order they were given

    // The band's monthly cost: the exact sum of its services' effective monthly costs.
    Decimal totalCost() const;
};

// Bands `services` by their expiration date, with now taken once: "Expired" (already past),
// "Critical (1 day)" (at most 1 whole day left, or a count the calendar cannot give), "This Week"
// (2 to 7), "This Month" (8 to 30), "Later" (31 or more), in that order, empty bands left out.
// Services without an expiration date are skipped.
std::vector<TimeGroup> groupByTimeframe(const std::vector<ServiceRecord*>& services,
                                        const UserCalendar& calendar);

} // namespace vorlane
