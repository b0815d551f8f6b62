// SPDX-License-Identifier: GPL-3.0-or-later
// Marking a service renewed on the real store: one billing period ahead in the user's calendar.

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <chrono>

namespace vorlane::testing {
namespace {

class ServiceActionsTest : public ScreenFixture {};

TEST_F(ServiceActionsTest, MarkRenewedMovesTheDateOnePeriodOfItsCycleAndActivates) {
    Organization& acme = addOrganization("Acme");
    const auto renewed = [&](BillingCycle cycle, Instant from) {
        ServiceRecord& service = addService(acme, "Renewed", [&](ServiceRecord& s) {
            s.setBillingCycle(cycle);
            s.expirationDate = from;
            s.setStatus(ServiceStatus::expired);
        });
        m_clock.advance(std::chrono::minutes(1));
        m_actions->markRenewed(service);
        EXPECT_EQ(service.status(), ServiceStatus::active);
        EXPECT_EQ(service.renewalDate, m_clock.now());
        EXPECT_EQ(service.updatedAt, m_clock.now());
        EXPECT_FALSE(store().hasUnsavedChanges()) << "renewing saves at once";
        return service.expirationDate;
    };
    // 10:00 in New York throughout (15:00 UTC in winter, 14:00 in summer).
    EXPECT_EQ(renewed(BillingCycle::monthly, utc(2026, 1, 31, 15)), utc(2026, 2, 28, 15));
    EXPECT_EQ(renewed(BillingCycle::quarterly, utc(2025, 11, 30, 15)), utc(2026, 2, 28, 15));
    EXPECT_EQ(renewed(BillingCycle::semiAnnual, utc(2026, 1, 15, 15)), utc(2026, 7, 15, 14));
    EXPECT_EQ(renewed(BillingCycle::annual, utc(2028, 2, 29, 15)), utc(2029, 2, 28, 15));
    EXPECT_EQ(renewed(BillingCycle::triennial, utc(2026, 3, 1, 15)), utc(2029, 3, 1, 15));
    // One-time and no billing are renewed as if yearly.
    EXPECT_EQ(renewed(BillingCycle::oneTime, utc(2026, 3, 1, 15)), utc(2027, 3, 1, 15));
    EXPECT_EQ(renewed(BillingCycle::none, utc(2026, 3, 1, 15)), utc(2027, 3, 1, 15));
    // Without an expiration date there is nothing to move.
    ServiceRecord& undated = addService(acme, "Undated");
    const Instant untouched = undated.updatedAt;
    m_clock.advance(std::chrono::minutes(1));
    m_actions->markRenewed(undated);
    EXPECT_EQ(undated.expirationDate, std::nullopt);
    EXPECT_EQ(undated.updatedAt, untouched);
}

} // namespace
} // namespace vorlane::testing
