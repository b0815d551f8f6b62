// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"

namespace vorlane {

struct ServiceRecord;

// What one billing period of the service costs, exactly, from whichever of its monthly and
// yearly amounts is set, read the way the effective monthly cost reads them: the yearly field
// holds one period's charge for a cycle of a year or longer (so it is spread over two or three
// years for the multi-year ones) and a year's for the shorter cycles.
//   monthly, quarterly, semi-annual: `monthlyCost` times 1, 3 or 6 when it is set, else that
//     share of `yearlyCost` (a quarter of a year's amount for a quarterly service);
//   annual, biennial, triennial: `yearlyCost` when it is set, else `monthlyCost` times 12, 24 or
//     36;
//   one-time, none and an unknown cycle: the amount entered, `yearlyCost` before `monthlyCost`.
// Zero when neither is set. Multiplications come before the one division, so that a charge that
// is a whole number of cents is never rounded.
Decimal chargePerPeriod(const ServiceRecord& service);

} // namespace vorlane
