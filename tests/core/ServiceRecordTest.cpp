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
    EXPECT_EQ(serviceCosting("0", "240", BillingCycle::biennial).effectiveMonthlyCost().toString(),
              "10");
    EXPECT_EQ(serviceCosting("0", "240", BillingCycle::quarterly).effectiveMonthlyCost().toString(),
              "20");
    EXPECT_EQ(
        serviceCosting("0", "240", BillingCycle::semiAnnual).effectiveMonthlyCost().toString(),
        "20");
    EXPECT_EQ(serviceCosting("0", "360", BillingCycle::triennial).effectiveMonthlyCost().toString(),
              "10");
    EXPECT_TRUE(serviceCosting("0", "240", BillingCycle::oneTime).effectiveMonthlyCost().isZero());
    EXPECT_TRUE(serviceCosting("0", "240", BillingCycle::none).effectiveMonthlyCost().isZero());
    EXPECT_EQ(serviceCosting("0", "100", BillingCycle::annual).effectiveMonthlyCost().toString(),
              "8.3333333333333333333333333333333333333");
    // A positive monthly amount wins whatever the cycle and the yearly amount say.
    EXPECT_EQ(serviceCosting("15", "999", BillingCycle::biennial).effectiveMonthlyCost().toString(),
              "15");
}

TEST(ServiceRecordTest, UnknownBillingCycleCostsNothingPerMonth) {
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
