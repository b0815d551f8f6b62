// SPDX-License-Identifier: GPL-3.0-or-later
#include "money/ChargePerPeriod.h"

#include "model/ServiceRecord.h"

#include <gtest/gtest.h>

#include <string>

namespace vorlane {
namespace {

std::string charge(BillingCycle cycle, const char* monthly, const char* yearly) {
    ServiceRecord service;
    service.setBillingCycle(cycle);
    service.monthlyCost = Decimal::fromString(monthly).value();
    service.yearlyCost = Decimal::fromString(yearly).value();
    return chargePerPeriod(service).toString();
}

TEST(ChargePerPeriodTest, EveryCycleFromTheMonthlyTheYearlyAndBothAmounts) {
    struct Case {
        BillingCycle cycle;
        const char* monthlyOnly; // monthly 10
        const char* yearlyOnly;  // yearly 240
        const char* both;        // monthly 10, yearly 100
    };
    const Case cases[] = {
        {BillingCycle::monthly, "10", "20", "10"},
        {BillingCycle::quarterly, "30", "60", "30"},
        {BillingCycle::semiAnnual, "60", "120", "60"},
        {BillingCycle::annual, "120", "240", "100"},
        // The yearly field of a multi-year service holds the whole period's charge: its
        // effective monthly cost is that spread over 24 or 36 months.
        {BillingCycle::biennial, "240", "240", "100"},
        {BillingCycle::triennial, "360", "240", "100"},
        {BillingCycle::oneTime, "10", "240", "100"},
        {BillingCycle::none, "10", "240", "100"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.cycle.rawValue()));
        EXPECT_EQ(charge(c.cycle, "10", "0"), c.monthlyOnly);
        EXPECT_EQ(charge(c.cycle, "0", "240"), c.yearlyOnly);
        EXPECT_EQ(charge(c.cycle, "10", "100"), c.both);
        EXPECT_EQ(charge(c.cycle, "0", "0"), "0");
    }
}

TEST(ChargePerPeriodTest, IsExactWhereTheChargeIsAWholeNumberOfCents) {
    // A third of 100 a year each month cannot be exact, but a quarter of 10 a year is 2.5, and a
    // year of 15 stays 15 rather than twelve times 1.25 recomputed.
    EXPECT_EQ(charge(BillingCycle::quarterly, "0", "10"), "2.5");
    EXPECT_EQ(charge(BillingCycle::annual, "0", "15"), "15");
    EXPECT_EQ(charge(BillingCycle::semiAnnual, "0", "0.03"), "0.015");
    EXPECT_EQ(charge(BillingCycle::monthly, "0", "100"), "8.3333333333333333333333333333333333333");
    EXPECT_EQ(charge(BillingCycle::quarterly, "0.3333333333333333333333333333333333", "0"),
              "0.9999999999999999999999999999999999");
    // An unknown stored cycle reads as none: the amount entered.
    ServiceRecord unknown;
    unknown.billingCycleRaw = "fortnightly";
    unknown.monthlyCost = Decimal(7);
    EXPECT_EQ(chargePerPeriod(unknown).toString(), "7");
}

} // namespace
} // namespace vorlane
