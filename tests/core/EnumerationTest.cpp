#include "model/BillingCycle.h"
#include "model/ExpirationState.h"
#include "model/OrgDetailTab.h"
#include "model/RiskLevel.h"
#include "model/ServiceStatus.h"
#include "model/ServiceType.h"
#include "model/ShareMethod.h"
#include "model/SidebarItem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <unordered_set>

namespace vorlane {
namespace {

template <typename E> class IterableEnumerationTest : public ::testing::Test {};

using Iterable = ::testing::Types<ServiceType, OrgDetailTab, SidebarItem, ShareMethod, BillingCycle,
                                  RiskLevel, ServiceStatus>;
TYPED_TEST_SUITE(IterableEnumerationTest, Iterable);

TYPED_TEST(IterableEnumerationTest, RawValuesRoundTripOnlyOnExactMatch) {
    const auto cases = TypeParam::allCases();
    ASSERT_EQ(cases.size(), TypeParam::caseCount);
    std::unordered_set<TypeParam> seen;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const TypeParam value = cases[i];
        EXPECT_EQ(value.index(), i) << "allCases must be in declaration order";
        EXPECT_EQ(value.id(), value.rawValue());
        EXPECT_TRUE(seen.insert(value).second) << "duplicate case " << value.rawValue();

        const auto back = TypeParam::fromRaw(value.rawValue());
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(*back, value);

        std::string upper(value.rawValue());
        std::transform(upper.begin(), upper.end(), upper.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        EXPECT_FALSE(TypeParam::fromRaw(upper).has_value()) << upper;
        EXPECT_FALSE(TypeParam::fromRaw(std::string(value.rawValue()) + " ").has_value());
    }
    EXPECT_FALSE(TypeParam::fromRaw("").has_value());
}

TEST(EnumerationTest, ServiceTypeAcceptsOnlyTheLowerCaseRawValue) {
    EXPECT_EQ(ServiceType::fromRaw("vps"), ServiceType(ServiceType::vps));
    EXPECT_FALSE(ServiceType::fromRaw("VPS").has_value());
    EXPECT_FALSE(ServiceType::fromRaw("Vps").has_value());
    EXPECT_EQ(ServiceType(ServiceType::vps).label(), "VPS");
}

TEST(EnumerationTest, EveryServiceKindBelongsToExactlyOneTab) {
    std::multiset<ServiceType::Value> listed;
    for (const OrgDetailTab tab : OrgDetailTab::allCases()) {
        for (const ServiceType type : tab.serviceTypes()) {
            listed.insert(type.value());
        }
    }
    for (const ServiceType type : ServiceType::allCases()) {
        EXPECT_EQ(listed.count(type.value()), 1u) << type.rawValue();
    }
    EXPECT_EQ(listed.size(), ServiceType::caseCount);
    for (const OrgDetailTab tab :
         {OrgDetailTab(OrgDetailTab::overview), OrgDetailTab(OrgDetailTab::expenses),
          OrgDetailTab(OrgDetailTab::renewals), OrgDetailTab(OrgDetailTab::notes),
          OrgDetailTab(OrgDetailTab::sharing)}) {
        EXPECT_TRUE(tab.serviceTypes().empty()) << tab.rawValue();
    }
}

TEST(EnumerationTest, CredentialsTabListsAccessKindsBeforeSecretKinds) {
    const auto types = OrgDetailTab(OrgDetailTab::credentials).serviceTypes();
    const std::vector<ServiceType> expected{ServiceType::sshAccess, ServiceType::ftpAccess,
                                            ServiceType::cloudAccount, ServiceType::apiKey,
                                            ServiceType::customSecret};
    EXPECT_TRUE(std::equal(types.begin(), types.end(), expected.begin(), expected.end()));
    const auto hosting = OrgDetailTab(OrgDetailTab::hosting).serviceTypes();
    ASSERT_EQ(hosting.size(), 4u);
    EXPECT_EQ(hosting.front(), ServiceType::sharedHosting);
    EXPECT_EQ(hosting.back(), ServiceType::plesk);
}

TEST(EnumerationTest, LabelsThatAreEasyToGetWrong) {
    EXPECT_EQ(BillingCycle(BillingCycle::biennial).label(), "Biennial (2yr)");
    EXPECT_EQ(BillingCycle(BillingCycle::triennial).label(), "Triennial (3yr)");
    EXPECT_EQ(BillingCycle(BillingCycle::semiAnnual).rawValue(), "semiAnnual");
    EXPECT_EQ(BillingCycle(BillingCycle::semiAnnual).label(), "Semi-Annual");
    EXPECT_EQ(SidebarItem(SidebarItem::allExpenses).displayName(), "Expenses");
    EXPECT_EQ(SidebarItem(SidebarItem::allCredentials).displayName(), "All Credentials");
    EXPECT_EQ(ServiceType(ServiceType::ftpAccess).label(), "FTP / SFTP");
    EXPECT_EQ(ServiceType(ServiceType::cpanel).label(), "cPanel");
    EXPECT_EQ(ExpirationState(ExpirationState::normal).displayName(), "OK");
    EXPECT_EQ(ExpirationState(ExpirationState::none).displayName(), "No Expiry");
}

TEST(EnumerationTest, CloudAccountIsTintedLikeHostingNotLikeItsNeighbours) {
    EXPECT_EQ(ServiceType(ServiceType::cloudAccount).tintColor(), Palette::Color::blue);
    EXPECT_EQ(ServiceType(ServiceType::sharedHosting).tintColor(), Palette::Color::blue);
    EXPECT_EQ(ServiceType(ServiceType::sshAccess).tintColor(), Palette::Color::gray);
    EXPECT_EQ(Palette::name(ServiceType(ServiceType::database).tintColor()), "mint");
}

TEST(EnumerationTest, ExpirationStatesAreDeclaredInOrderOfUrgency) {
    // `upcoming` (2-7 days) is more urgent than `soon` (8-30 days), against the words.
    EXPECT_LT(ExpirationState(ExpirationState::soon).index(),
              ExpirationState(ExpirationState::upcoming).index());
    EXPECT_LT(ExpirationState(ExpirationState::critical).index(),
              ExpirationState(ExpirationState::expired).index());
    EXPECT_EQ(ExpirationState::fromRaw("upcoming"), ExpirationState(ExpirationState::upcoming));
    EXPECT_EQ(ExpirationState(ExpirationState::soon).color(), Palette::Color::yellow);
}

TEST(EnumerationTest, BillingCyclesSpreadAYearlyAmountOverTwelveMonthsUnlessMultiYear) {
    EXPECT_EQ(BillingCycle(BillingCycle::quarterly).yearlyCostSpreadMonths(), 12);
    EXPECT_EQ(BillingCycle(BillingCycle::monthly).yearlyCostSpreadMonths(), 12);
    EXPECT_EQ(BillingCycle(BillingCycle::biennial).yearlyCostSpreadMonths(), 24);
    EXPECT_EQ(BillingCycle(BillingCycle::triennial).yearlyCostSpreadMonths(), 36);
    EXPECT_FALSE(BillingCycle(BillingCycle::oneTime).yearlyCostSpreadMonths().has_value());
    EXPECT_FALSE(BillingCycle(BillingCycle::none).yearlyCostSpreadMonths().has_value());
}

} // namespace
} // namespace vorlane
