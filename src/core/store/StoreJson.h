// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"
#include "util/Instant.h"

#include <cstddef>
#include <string>

namespace vorlane {

struct Organization;
struct ServiceRecord;
class UserCalendar;

// One-line JSON objects for what the store returns, as `vorlane-cli --json` prints them: members
// in a fixed order, dates as ISO 8601 UTC text, money as exact decimal text (never a float).
// Never includes a secret, only whether the record has one.
class StoreJson {
public:
    static std::string service(const ServiceRecord& service, const UserCalendar& calendar);
    // `service` with every other field of the record added under its own name (absent values
    // as null), for scripts that read back what was imported. Still no secret.
    static std::string serviceWithAllFields(const ServiceRecord& service,
                                            const UserCalendar& calendar);
    static std::string organization(const Organization& organization);
    static std::string totals(std::size_t activeServices, const Decimal& monthlyCost,
                              const Decimal& yearlyCost);
};

} // namespace vorlane
