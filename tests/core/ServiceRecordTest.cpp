// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ServiceRecord.h"

#include <gtest/gtest.h>

namespace vorlane {
namespace {

Decimal dec(std::string_view text) {
    return Decimal::fromString(text).value();
}

ServiceRecord serviceCosting(std::string_view monthly, std::string_view yearly,
                             BillingCycle cycle) {
    ServiceRecord service = ServiceRecord::created(Instant{});
    service.monthlyCost = dec(monthly);
    service.yearlyCost = dec(yearly);
    service.setBillingCycle(cycle);
    return service;
}

TEST(ServiceRecordTest, EffectiveMonthlyCostSpreadsTheYearlyAmountByCycle) {
    const struct {
        const char* monthly;
        const char* yearly;
        BillingCycle::Value cycle;
        const char* expected;
    } rows[] = {
        {"0", "240", BillingCycle::biennial, "10"},
        {"0", "240", BillingCycle::quarterly, "20"},
        {"0", "240", BillingCycle::semiAnnual, "20"},
        {"0", "360", BillingCycle::triennial, "10"},
        {"0", "240", BillingCycle::oneTime, "0"},
        {"0", "240", BillingCycle::none, "0"},
        {"0", "100", BillingCycle::annual, "8.3333333333333333333333333333333333333"},
        // A positive monthly amount wins whatever the cycle and the yearly amount say.
        {"15", "999", BillingCycle::biennial, "15"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.yearly) + " " +
                     std::string(BillingCycle(row.cycle).rawValue()));
        EXPECT_EQ(
            serviceCosting(row.monthly, row.yearly, row.cycle).effectiveMonthlyCost().toString(),
            row.expected);
    }
    // A raw value in the wrong case is no known cycle.
    ServiceRecord service = serviceCosting("0", "240", BillingCycle::annual);
    service.billingCycleRaw = "Annual";
    EXPECT_EQ(service.billingCycle(), BillingCycle::none);
    EXPECT_TRUE(service.effectiveMonthlyCost().isZero());
}

TEST(ServiceRecordTest, AccessorsFallBackOnUnknownRawValuesAndWriteRawValues) {
    ServiceRecord service;
    EXPECT_EQ(service.serviceType(), ServiceType::customSecret);
    EXPECT_EQ(service.billingCycle(), BillingCycle::none);
    EXPECT_EQ(service.riskLevel(), RiskLevel::low);
    EXPECT_EQ(service.status(), ServiceStatus::active);

    service.serviceTypeRaw = "VPS";
    service.statusRaw = "paused";
    service.riskLevelRaw = "severe";
    EXPECT_EQ(service.serviceType(), ServiceType::customSecret);
    EXPECT_EQ(service.status(), ServiceStatus::active);
    EXPECT_EQ(service.riskLevel(), RiskLevel::low);

    service.setServiceType(ServiceType::domainRegistrar);
    service.setBillingCycle(BillingCycle::semiAnnual);
    service.setStatus(ServiceStatus::archived);
    EXPECT_EQ(service.serviceTypeRaw, "domainRegistrar");
    EXPECT_EQ(service.billingCycleRaw, "semiAnnual");
    EXPECT_EQ(service.statusRaw, "archived");
}

TEST(ServiceRecordTest, DisplaySubtitleTakesTheFirstNonEmptyAddressElseTheKind) {
    ServiceRecord service;
    service.setServiceType(ServiceType::database);
    EXPECT_EQ(service.displaySubtitle(), "Database");
    service.ipAddress = "10.0.0.5";
    EXPECT_EQ(service.displaySubtitle(), "10.0.0.5");
    service.hostname = "db1";
    EXPECT_EQ(service.displaySubtitle(), "db1");
    service.domain = "example.test";
    EXPECT_EQ(service.displaySubtitle(), "example.test");
    service.provider = "Hetzner";
    EXPECT_EQ(service.displaySubtitle(), "Hetzner");
}

TEST(ServiceRecordTest, CreatedRecordsHaveIdentityAndMatchingTimestamps) {
    const Instant now{std::chrono::milliseconds(1'790'000'000'000)};
    const ServiceRecord a = ServiceRecord::created(now);
    const ServiceRecord b = ServiceRecord::created(now);
    EXPECT_FALSE(a.id.isNil());
    EXPECT_NE(a.id, b.id);
    EXPECT_EQ(a.createdAt, now);
    EXPECT_EQ(a.updatedAt, now);
    EXPECT_TRUE(a.secretKeychainID.empty());
    EXPECT_EQ(a.statusRaw, "active");
}

} // namespace
} // namespace vorlane
