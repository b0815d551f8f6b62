// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <vector>

namespace vorlane {

struct ServiceRecord;
class UserCalendar;

// The days a service's charge falls due in [from, to), ascending: its expiration date and, for a
// recurring cycle, the dates one or more periods before and after it (each counted from the
// expiration date itself, so that 31 January monthly gives the last day of every month), never
// before its purchase date. A one-time or unbilled service falls due once, on its expiration
// date; a service without one never. Each date is when `chargePerPeriod` is paid again.
std::vector<Instant> renewalDatesBetween(const ServiceRecord& service, Instant from, Instant to,
                                         const UserCalendar& calendar);

} // namespace vorlane
