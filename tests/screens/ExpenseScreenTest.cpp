// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ExpenseScreen.h"

#include "ScreenFixture.h"
#include "app/AppState.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/DashboardScreen.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace vorlane::testing {
namespace {

using ::testing::ElementsAre;
using GroupBy = ExpenseScreen::GroupBy;

class ExpenseScreenTest : public ScreenFixture {
protected:
    // A service that costs `monthly` a month, or, when that is "0", `yearly` a year spread by its
    // cycle.
    ServiceRecord& paid(Organization& owner, const std::string& title, const char* monthly,
                        const char* yearly = "0", BillingCycle cycle = BillingCycle::monthly,
                        ServiceType type = ServiceType::vps, const std::string& provider = {}) {
        return addService(owner, title, [&](ServiceRecord& service) {
            service.monthlyCost = money(monthly);
            service.yearlyCost = money(yearly);
            service.setBillingCycle(cycle);
            service.setServiceType(type);
            service.provider = provider;
        });
    }

    static std::vector<std::string> titles(const ExpenseScreen& screen) {
        std::vector<std::string> result;
        for (const ExpenseScreen::Card& card : screen.cards()) {
            result.push_back(card.title);
        }
        return result;
    }
    static std::vector<std::string> serviceTitles(const ExpenseScreen::Card& card) {
        std::vector<std::string> result;
        for (const ExpenseScreen::ServiceLine& line : card.services) {
            result.emplace_back(line.title);
        }
        return result;
    }
    static std::vector<std::string> barTexts(const CostsDueChart& chart) {
        std::vector<std::string> result;
        for (const ChartBar& bar : chart.bars()) {
            result.push_back(bar.label + " " + bar.valueText + " (" + bar.accessibleText + ")");
        }
        return result;
    }
    static std::vector<std::string> summaryValues(const ExpenseScreen& screen) {
        std::vector<std::string> result;
        for (const StatCard& card : screen.summary()) {
            result.push_back(card.title + "=" + card.value);
        }
        return result;
    }
};

TEST_F(ExpenseScreenTest, EmptyVaultShowsFormattedZerosAndNoCardsInAnyGrouping) {
    Organization& acme = addOrganization("Acme");
    addService(acme, "Free admin login"); // no cost: not a paid service
    ExpenseScreen screen(store(), m_calendar);
    EXPECT_THAT(summaryValues(screen), ElementsAre("Monthly Total=$0", "Yearly Estimate=$0",
                                                   "Paid Services=0", "Organizations=0"));
    for (const GroupBy groupBy : ExpenseScreen::groupings) {
        screen.setGroupBy(groupBy);
        EXPECT_TRUE(screen.cards().empty()) << ExpenseScreen::label(groupBy);
        EXPECT_TRUE(screen.chart().empty()) << ExpenseScreen::label(groupBy);
    }
}

TEST_F(ExpenseScreenTest, ArchivedServicesAndOrganizationsNeverCount) {
    Organization& acme = addOrganization("Acme");
    paid(acme, "Live VPS", "10", "0", BillingCycle::monthly, ServiceType::vps, "Hetzner");
    ServiceRecord& old =
        paid(acme, "Old VPS", "99", "0", BillingCycle::monthly, ServiceType::vps, "Hetzner");
    archiveFlag(old);
    Organization& gone = addOrganization("Gone Ltd");
    paid(gone, "Orphaned mailbox", "5", "0", BillingCycle::monthly, ServiceType::mailbox,
         "Hetzner");
    archiveFlag(gone);

    ExpenseScreen screen(store(), m_calendar);
    // The store's totals skip archived organizations; the paid services are counted whatever
    // their organization, but never an archived service.
    EXPECT_THAT(summaryValues(screen), ElementsAre("Monthly Total=$10", "Yearly Estimate=$120",
                                                   "Paid Services=2", "Organizations=1"));
    EXPECT_THAT(titles(screen), ElementsAre("Acme"));
    EXPECT_THAT(serviceTitles(screen.cards()[0]), ElementsAre("Live VPS"));

    screen.setGroupBy(GroupBy::provider);
    ASSERT_THAT(titles(screen), ElementsAre("Hetzner"));
    EXPECT_THAT(serviceTitles(screen.cards()[0]), ElementsAre("Live VPS", "Orphaned mailbox"));
    EXPECT_EQ(screen.cards()[0].monthlyText, "$15");
}

TEST_F(ExpenseScreenTest, ProvidersGroupByExactTextInPlainOrderWithYearlyAsTwelveMonths) {
    Organization& acme = addOrganization("Acme");
    paid(acme, "Lower", "3", "0", BillingCycle::monthly, ServiceType::vps, "acme");
    paid(acme, "Upper", "4", "0", BillingCycle::monthly, ServiceType::vps, "Acme");
    // 240 over two years: 10 a month, so 120 a year on this card (not the 240 entered).
    paid(acme, "Domain", "0", "240", BillingCycle::biennial, ServiceType::domainRegistrar, "Zeta");
    paid(acme, "Unnamed", "1", "0", BillingCycle::monthly, ServiceType::vps, "");

    ExpenseScreen screen(store(), m_calendar, GroupBy::provider);
    // Byte order: the empty provider first, capitals before small letters.
    ASSERT_THAT(titles(screen), ElementsAre("No Provider", "Acme", "Zeta", "acme"));
    const ExpenseScreen::Card& zeta = screen.cards()[2];
    EXPECT_EQ(zeta.monthlyText, "$10");
    EXPECT_EQ(zeta.yearlyText, "$120");
    EXPECT_EQ(screen.cards()[3].monthlyText, "$3");
    // The organization card keeps the organization's own yearly rule: 12 × 3 + 12 × 4 + 240 + 12.
    screen.setGroupBy(GroupBy::organization);
    ASSERT_EQ(screen.cards().size(), 1U);
    EXPECT_EQ(screen.cards()[0].monthlyText, "$18");
    EXPECT_EQ(screen.cards()[0].yearlyText, "$336");
}

TEST_F(ExpenseScreenTest, TypesSortByLabelInCodePointOrderWithTheirIconsAndTints) {
    Organization& acme = addOrganization("Acme");
    paid(acme, "Panel", "2", "0", BillingCycle::monthly, ServiceType::cpanel);
    paid(acme, "Server", "2", "0", BillingCycle::monthly, ServiceType::vps);
    paid(acme, "Key", "2", "0", BillingCycle::monthly, ServiceType::apiKey);
    paid(acme, "Bucket", "2", "0", BillingCycle::monthly, ServiceType::cloudAccount);
    // An unknown stored kind reads as "Custom Secret".
    addService(acme, "Odd", [](ServiceRecord& service) {
        service.serviceTypeRaw = "gopher";
        service.monthlyCost = money("1");
    });

    ExpenseScreen screen(store(), m_calendar, GroupBy::type);
    // A locale-aware order would put "cPanel" between "Cloud Account" and "Custom Secret".
    ASSERT_THAT(titles(screen),
                ElementsAre("API Key", "Cloud Account", "Custom Secret", "VPS", "cPanel"));
    EXPECT_EQ(screen.cards()[3].icon, ServiceType(ServiceType::vps).icon());
    EXPECT_EQ(screen.cards()[2].yearlyText, "$12");
}

TEST_F(ExpenseScreenTest, CardsListTheirServicesCostliestFirstAndKeepTitleOrderOnTies) {
    Organization& beta = addOrganization("beta");
    Organization& alpha = addOrganization("Alpha");
    addOrganization("Zulu"); // no costs: no card
    paid(beta, "B-cheap", "1");
    paid(beta, "B-yearly", "0", "120", BillingCycle::annual); // 10 a month
    paid(beta, "A-tie", "10");
    paid(beta, "C-tie", "10");
    paid(beta, "Z-dear", "25.5");
    paid(alpha, "One-off", "0", "500", BillingCycle::oneTime); // costs nothing a month
    addService(beta, "Free");                                  // no cost: not listed

    ExpenseScreen screen(store(), m_calendar);
    // Organizations in the locale's name order, where "Alpha" < "beta" (bytes would say otherwise).
    ASSERT_THAT(titles(screen), ElementsAre("Alpha", "beta"));
    const ExpenseScreen::Card& card = screen.cards()[1];
    EXPECT_THAT(serviceTitles(card),
                ElementsAre("Z-dear", "A-tie", "B-yearly", "C-tie", "B-cheap"));
    EXPECT_EQ(card.services[0].costText(), "$25.5");
    EXPECT_EQ(card.services[2].cycleLabel, "Annual");
    EXPECT_EQ(card.services[2].costText(), "$10");
    EXPECT_EQ(card.color, beta.avatarColor());
    EXPECT_EQ(card.accessibleText(), "beta: $56.5 a month, $678 a year, 5 services");
    // A one-time cost shows with a monthly amount of nothing, and still counts as paid.
    EXPECT_EQ(screen.cards()[0].monthlyText, "$0");
    EXPECT_EQ(screen.cards()[0].yearlyText, "$500");
    EXPECT_EQ(screen.summary()[2].value, "6");
}

TEST_F(ExpenseScreenTest, ReloadWorksOutTheCostOfAnEditedServiceAfresh) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& domain = paid(acme, "Domain", "0", "120", BillingCycle::annual);
    ExpenseScreen screen(store(), m_calendar, GroupBy::type);
    const auto cost = [&screen] {
        screen.reload();
        return screen.cards().at(0).services.at(0).costText();
    };
    EXPECT_EQ(cost(), "$10");
    domain.yearlyCost = money("240");
    store().noteChanged(domain);
    EXPECT_EQ(cost(), "$20");
    domain.setBillingCycle(BillingCycle::biennial);
    store().noteChanged(domain);
    EXPECT_EQ(cost(), "$10");
    domain.monthlyCost = money("7");
    store().noteChanged(domain);
    EXPECT_EQ(cost(), "$7");
    domain.monthlyCost = money("0");
    store().noteChanged(domain);
    EXPECT_EQ(cost(), "$10");
}

TEST_F(ExpenseScreenTest, ChartFollowsTheCardsAndFoldsTheCheapestIntoOneBarWhenThereAreMany) {
    Organization& acme = addOrganization("Acme");
    paid(acme, "Half", "5", "0", BillingCycle::monthly, ServiceType::vps, "B");
    paid(acme, "Whole", "10", "0", BillingCycle::monthly, ServiceType::vps, "A");
    ExpenseScreen screen(store(), m_calendar, GroupBy::provider);
    ASSERT_EQ(screen.chart().size(), 2U);
    EXPECT_EQ(screen.chart()[0].label, "A");
    EXPECT_DOUBLE_EQ(screen.chart()[0].fraction, 1.0);
    EXPECT_EQ(screen.chart()[1].valueText, "$5");
    EXPECT_DOUBLE_EQ(screen.chart()[1].fraction, 0.5);
    EXPECT_EQ(screen.chartTitle(), "Monthly Cost by Provider");

    // Twenty more providers P00..P19 costing 1..20. The fifteen dearest keep their bars, in card
    // order (A at 10 beats P09 at 10: the earlier card wins a tie); the seven others, B among
    // them, share the last bar, which is then the longest.
    for (int i = 0; i < 20; ++i) {
        const std::string name = (i < 10 ? "P0" : "P") + std::to_string(i);
        paid(acme, "S" + name, std::to_string(i + 1).c_str(), "0", BillingCycle::monthly,
             ServiceType::vps, name);
    }
    screen.reload();
    ASSERT_EQ(screen.cards().size(), 22U);
    ASSERT_EQ(screen.chart().size(), ExpenseScreen::chartBarLimit);
    EXPECT_EQ(screen.chart()[0].label, "A");
    EXPECT_EQ(screen.chart()[1].label, "P06");
    EXPECT_EQ(screen.chart()[14].label, "P19");
    EXPECT_EQ(screen.chart()[15].label, "Others (7)");
    EXPECT_EQ(screen.chart()[15].valueText, "$26");
    EXPECT_EQ(screen.chart()[15].accessibleText, "7 other groups: $26 a month");
    EXPECT_DOUBLE_EQ(screen.chart()[15].fraction, 1.0);
    EXPECT_DOUBLE_EQ(screen.chart()[14].fraction, 20.0 / 26.0);
}

// The months ahead are the dashboard's chart, whatever the grouping, and move on with the clock.
TEST_F(ExpenseScreenTest, CostsDueByMonthAreTheDashboardsChartAndFollowTheClock) {
    Organization& acme = addOrganization("Acme");
    const auto dueOn = [this](ServiceRecord& service, Instant date) -> ServiceRecord& {
        service.expirationDate = date;
        store().noteChanged(service);
        return service;
    };
    dueOn(paid(acme, "Domain", "0", "15", BillingCycle::annual), utc(2026, 3, 15, 12));
    // 08:00 on 1 April in New York: April's first charge, then one every month.
    ServiceRecord& vps = dueOn(paid(acme, "VPS", "10"), utc(2026, 4, 1, 12));
    paid(acme, "No date", "20"); // in the cards, but never due
    archiveFlag(dueOn(paid(acme, "Archived", "50"), utc(2026, 3, 20, 12)));

    ExpenseScreen screen(store(), m_calendar);
    ASSERT_TRUE(screen.costsDue().hasCostsDue());
    const std::vector<std::string> expected{
        "Mar $15 (March 2026: $15 due)",     "Apr $10 (April 2026: $10 due)",
        "May $10 (May 2026: $10 due)",       "Jun $10 (June 2026: $10 due)",
        "Jul $10 (July 2026: $10 due)",      "Aug $10 (August 2026: $10 due)",
        "Sep $10 (September 2026: $10 due)", "Oct $10 (October 2026: $10 due)",
        "Nov $10 (November 2026: $10 due)",  "Dec $10 (December 2026: $10 due)",
        "Jan $10 (January 2027: $10 due)",   "Feb $10 (February 2027: $10 due)"};
    EXPECT_EQ(barTexts(screen.costsDue()), expected);
    EXPECT_EQ(barTexts(DashboardScreen(store(), m_state, m_calendar).costsDue()), expected);
    EXPECT_DOUBLE_EQ(screen.costsDue().bars()[0].fraction, 1.0);
    EXPECT_DOUBLE_EQ(screen.costsDue().bars()[1].fraction, 10.0 / 15.0);

    screen.setGroupBy(GroupBy::type);
    EXPECT_EQ(barTexts(screen.costsDue()), expected);

    // An edited amount is what the next rebuild charges.
    vps.monthlyCost = money("12.5");
    store().noteChanged(vps);
    screen.reload();
    EXPECT_EQ(screen.costsDue().bars()[1].valueText, "$12.5");
    vps.monthlyCost = money("10");
    store().noteChanged(vps);

    // A month on, the domain's renewal in March has lapsed unrenewed: March 2027 holds only the
    // VPS, not a year's domain as well.
    m_clock.set(utc(2026, 4, 10, 16));
    screen.reload();
    ASSERT_EQ(screen.costsDue().bars().size(), 12U);
    EXPECT_EQ(screen.costsDue().bars().front().label + " " +
                  screen.costsDue().bars().front().valueText,
              "Apr $10");
    EXPECT_EQ(screen.costsDue().bars().back().label + " " +
                  screen.costsDue().bars().back().valueText,
              "Mar $10");
}

} // namespace
} // namespace vorlane::testing
