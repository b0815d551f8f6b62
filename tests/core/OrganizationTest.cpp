// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Organization.h"

#include "ManualClock.h"
#include "TestTime.h"
#include "model/ServiceRecord.h"
#include "util/UserCalendar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <set>

namespace vorlane {
namespace {

using namespace std::chrono_literals;

class OrganizationTest : public ::testing::Test {
protected:
    ServiceRecord& addService(std::string_view monthly = "0", std::string_view yearly = "0") {
        ServiceRecord& service = services.emplace_back(ServiceRecord::created(clock.now()));
        service.monthlyCost = Decimal::fromString(monthly).value();
        service.yearlyCost = Decimal::fromString(yearly).value();
        service.organization = &organization;
        organization.services.push_back(&service);
        return service;
    }

    testing::ManualClock clock{testing::utc(2026, 6, 15, 12)};
    UserCalendar calendar{clock, "Europe/Berlin"};
    Organization organization = Organization::created(clock.now());
    std::deque<ServiceRecord> services; // stable addresses
};

TEST_F(OrganizationTest, YearlyCostUsesTheStoredMonthlyAmountAndSkipsArchived) {
    addService("15", "0");
    EXPECT_EQ(organization.monthlyCost().toString(), "15");
    EXPECT_EQ(organization.yearlyCost().toString(), "180");

    ServiceRecord& biennial = addService("0", "240");
    biennial.setBillingCycle(BillingCycle::biennial);
    // Monthly spreads it over 24 months; yearly takes the yearly amount as it stands.
    EXPECT_EQ(organization.monthlyCost().toString(), "25");
    EXPECT_EQ(organization.yearlyCost().toString(), "420");

    ServiceRecord& archived = addService("100", "0");
    archived.isArchived = true;
    EXPECT_EQ(organization.monthlyCost().toString(), "25");
    EXPECT_EQ(organization.yearlyCost().toString(), "420");
}

TEST_F(OrganizationTest, EmptyOrganizationCostsNothingAndHasNoNextExpiration) {
    EXPECT_TRUE(organization.monthlyCost().isZero());
    EXPECT_TRUE(organization.yearlyCost().isZero());
    EXPECT_FALSE(organization.nextExpiration(calendar).has_value());
    EXPECT_TRUE(organization.activeServices().empty());
}

TEST_F(OrganizationTest, ServiceListsFollowStatusArchiveAndExpirationRules) {
    ServiceRecord& plain = addService();
    ServiceRecord& unknownStatus = addService();
    unknownStatus.statusRaw = "suspended";
    ServiceRecord& warning = addService();
    warning.setStatus(ServiceStatus::warning);
    ServiceRecord& archivedCritical = addService();
    archivedCritical.isArchived = true;
    archivedCritical.expirationDate = clock.now() + 20h;
    ServiceRecord& soon = addService();
    soon.expirationDate = clock.now() + 10 * 24h;
    ServiceRecord& upcoming = addService();
    upcoming.expirationDate = clock.now() + 3 * 24h;
    ServiceRecord& expired = addService();
    expired.expirationDate = clock.now() - 1min;

    const std::vector<ServiceRecord*> active = organization.activeServices();
    EXPECT_EQ(active,
              (std::vector<ServiceRecord*>{&plain, &unknownStatus, &soon, &upcoming, &expired}));
    EXPECT_EQ(organization.expiringServices(calendar),
              (std::vector<ServiceRecord*>{&archivedCritical, &upcoming}));
    EXPECT_EQ(organization.expiredServices(calendar), (std::vector<ServiceRecord*>{&expired}));
    // Archived services count for the next expiration; past dates do not.
    EXPECT_EQ(organization.nextExpiration(calendar), clock.now() + 20h);
    archivedCritical.expirationDate.reset();
    EXPECT_EQ(organization.nextExpiration(calendar), clock.now() + 3 * 24h);
}

TEST(OrganizationInitialsTest, FirstLettersOfTheFirstTwoWords) {
    const auto initials = [](std::string name) {
        Organization organization;
        organization.name = std::move(name);
        return organization.initials();
    };
    EXPECT_EQ(initials("acme corp ltd"), "AC");
    EXPECT_EQ(initials("  acme   corp  "), "AC");
    EXPECT_EQ(initials("  acme  "), "A");
    EXPECT_EQ(initials(""), "");
    EXPECT_EQ(initials("   "), "");
    EXPECT_EQ(initials("émile zola"), "ÉZ");
    EXPECT_EQ(initials("łódź bakery"), "ŁB");
    EXPECT_EQ(initials("Δέλτα ωμέγα"), "ΔΩ");
    // A letter written as base and combining accent stays one character.
    EXPECT_EQ(initials("e\u0301cole normale"), "E\u0301N");
    // Full case mapping: the sharp s upper-cases to two letters.
    EXPECT_EQ(initials("ßtudio"), "SS");
    // Tabs are not separators; only spaces are.
    EXPECT_EQ(initials("a\tb c"), "AC");
}

TEST(OrganizationAvatarTest, ColourComesFromTheEightAvatarColoursAndIsStablePerName) {
    const std::vector<Palette::Color> allowed{
        Palette::Color::indigo, Palette::Color::blue, Palette::Color::teal,   Palette::Color::mint,
        Palette::Color::orange, Palette::Color::pink, Palette::Color::purple, Palette::Color::cyan};
    std::set<Palette::Color> used;
    for (int i = 0; i < 200; ++i) {
        Organization organization;
        organization.name = "Client " + std::to_string(i);
        const Palette::Color color = organization.avatarColor();
        EXPECT_NE(std::find(allowed.begin(), allowed.end(), color), allowed.end());
        EXPECT_EQ(organization.avatarColor(), color);
        used.insert(color);
    }
    EXPECT_EQ(used.size(), 8u) << "200 names should reach every avatar colour";
}

} // namespace
} // namespace vorlane
