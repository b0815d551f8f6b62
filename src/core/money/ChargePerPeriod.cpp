// SPDX-License-Identifier: GPL-3.0-or-later
#include "money/ChargePerPeriod.h"

#include "model/ServiceRecord.h"

namespace vorlane {

Decimal chargePerPeriod(const ServiceRecord& service) {
    const Decimal zero;
    // The sign and zero tests, not a comparison with zero: charts ask this of every service of
    // a large vault on each rebuild, and a full comparison of two decimals costs many times more.
    const auto isPositive = [](const Decimal& amount) {
        return !amount.isZero() && !amount.isNegative();
    };
    const bool hasMonthly = isPositive(service.monthlyCost);
    const bool hasYearly = isPositive(service.yearlyCost);
    const auto shareOfYear = [&](int months) {
        if (hasMonthly) {
            return service.monthlyCost * Decimal(months);
        }
        return (service.yearlyCost * Decimal(months)).dividedBy(Decimal(12)).value_or(zero);
    };
    const auto wholePeriod = [&](int months) {
        return hasYearly ? service.yearlyCost : service.monthlyCost * Decimal(months);
    };
    switch (service.billingCycle().value()) {
    case BillingCycle::monthly:
        return shareOfYear(1);
    case BillingCycle::quarterly:
        return shareOfYear(3);
    case BillingCycle::semiAnnual:
        return shareOfYear(6);
    case BillingCycle::annual:
        return wholePeriod(12);
    case BillingCycle::biennial:
        return wholePeriod(24);
    case BillingCycle::triennial:
        return wholePeriod(36);
    case BillingCycle::oneTime:
    case BillingCycle::none:
        break;
    }
    if (hasYearly) {
        return service.yearlyCost;
    }
    return hasMonthly ? service.monthlyCost : zero;
}

} // namespace vorlane
