// SPDX-License-Identifier: GPL-3.0-or-later
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

TEST(EnumerationTest, ExpirationStatesAreDeclaredInOrderOfUrgency) {
    // `upcoming` (2-7 days) is more urgent than `soon` (8-30 days), against the words.
    EXPECT_LT(ExpirationState(ExpirationState::soon).index(),
              ExpirationState(ExpirationState::upcoming).index());
    EXPECT_LT(ExpirationState(ExpirationState::critical).index(),
              ExpirationState(ExpirationState::expired).index());
}

} // namespace
} // namespace vorlane
