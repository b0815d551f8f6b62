// SPDX-License-Identifier: GPL-3.0-or-later
// The days a service's charge falls due in a window are found by asking the calendar only about
// the periods that can reach the window. Checked against the plain walk over every period, in a
// zone with daylight-saving changes, for random cycles, dates and windows.

#include "money/RenewalDates.h"

#include "ManualClock.h"
#include "TestTime.h"
#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <gtest/gtest.h>

#include <random>

namespace vorlane::testing {
namespace {

// Every period from far before to far after the expiration date, each asked of the calendar.
std::vector<Instant> everyPeriodBetween(const ServiceRecord& service, Instant from, Instant to,
                                        const UserCalendar& calendar) {
    std::vector<Instant> dates;
    const Instant earliest = service.purchaseDate ? std::max(from, *service.purchaseDate) : from;
    const int step = service.billingCycle().renewalMonths();
    for (int k = -150; k <= 150; ++k) {
        const std::optional<Instant> date =
            calendar.adding(UserCalendar::Unit::month, k * step, *service.expirationDate);
        if (date && *date >= earliest && *date < to) {
            dates.push_back(*date);
        }
    }
    return dates;
}

TEST(RenewalDatesTest, AgreeWithTheWalkOverEveryPeriodAcrossMonthEndsAndDaylightSaving) {
    ManualClock clock(utc(2026, 3, 10, 12));
    const UserCalendar calendar(clock, "America/New_York");
    const BillingCycle recurring[] = {BillingCycle::monthly,    BillingCycle::quarterly,
                                      BillingCycle::semiAnnual, BillingCycle::annual,
                                      BillingCycle::biennial,   BillingCycle::triennial};
    std::mt19937_64 random(20261124);
    const auto hoursFrom = [&](Instant base, int spanDays) {
        std::uniform_int_distribution<int> hours(-spanDays * 24, spanDays * 24);
        return base + std::chrono::hours(hours(random));
    };
    const Instant base = utc(2026, 1, 31, 23);
    int found = 0;
    for (int round = 0; round < 1500; ++round) {
        ServiceRecord service;
        service.setBillingCycle(recurring[random() % std::size(recurring)]);
        // Month ends and the hours around a clock change are where the arithmetic can slip.
        service.expirationDate = round % 3 == 0 ? utc(2025 + static_cast<int>(random() % 3),
                                                      1 + static_cast<unsigned>(random() % 12),
                                                      28 + static_cast<unsigned>(random() % 4),
                                                      static_cast<int>(random() % 24))
                                                : hoursFrom(base, 5 * 365);
        if (random() % 4 == 0) {
            service.purchaseDate = hoursFrom(base, 3 * 365);
        }
        const Instant from = hoursFrom(base, 3 * 365);
        const Instant to = from + std::chrono::hours(1 + random() % (2 * 365 * 24));
        const std::vector<Instant> dates = renewalDatesBetween(service, from, to, calendar);
        ASSERT_EQ(dates, everyPeriodBetween(service, from, to, calendar))
            << "round " << round << ", cycle " << service.billingCycleRaw;
        found += static_cast<int>(dates.size());
    }
    EXPECT_GT(found, 1500) << "the windows should hold dates, not only miss them";
}

} // namespace
} // namespace vorlane::testing
