// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/DashboardScreen.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class DashboardScreenTest : public ScreenFixture {
protected:
    DashboardScreen screen() { return DashboardScreen(store(), m_state, m_calendar); }

    ServiceRecord& expiring(Organization& owner, const std::string& title, Instant date) {
        return addService(owner, title,
                          [date](ServiceRecord& service) { service.expirationDate = date; });
    }

    Instant daysFromNow(int days, std::chrono::milliseconds plus = 0ms) {
        return *m_calendar.adding(UserCalendar::Unit::day, days, m_clock.now()) + plus;
    }

    static std::vector<std::string> alertTexts(const DashboardScreen& dashboard) {
        std::vector<std::string> result;
        for (const DashboardScreen::Alert& alert : dashboard.alerts()) {
            result.push_back(alert.title + ": " + alert.message + " [" +
                             std::string(alert.level.rawValue()) + "]");
        }
        return result;
    }
};

TEST_F(DashboardScreenTest, EmptyVaultShowsZerosFormattedAmountsAndNoRows) {
    const DashboardScreen dashboard = screen();
    std::vector<std::string> stats;
    for (const StatCard& card : dashboard.stats()) {
        stats.push_back(card.title + "=" + card.value);
    }
    EXPECT_THAT(stats, ElementsAre("Organizations=0", "Active Services=0", "Monthly Spend=$0",
                                   "Yearly Estimate=$0", "Due in the Next 30 Days=$0"));
    EXPECT_FALSE(dashboard.showsAlerts());
    EXPECT_TRUE(dashboard.expiringThisMonth().empty());
    EXPECT_TRUE(dashboard.recentlyUpdated().empty());
    // The chart still has its twelve months, from this one on, but nothing to draw.
    EXPECT_FALSE(dashboard.costsDue().hasCostsDue());
    ASSERT_EQ(dashboard.costsDue().bars().size(), 12U);
    EXPECT_EQ(dashboard.costsDue().bars().front().label, "Mar");
    EXPECT_EQ(dashboard.costsDue().bars().back().label, "Feb");
    EXPECT_EQ(dashboard.costsDue().bars().front().valueText, "$0");
}

TEST_F(DashboardScreenTest, StatsCountOrganizationsThatAreNotArchivedAndUseTheStoreTotals) {
    Organization& acme = addOrganization("Acme");
    Organization& old = addOrganization("Old Client");
    addService(acme, "VPS", [](ServiceRecord& service) { service.monthlyCost = money("1234.5"); });
    addService(old, "Mailbox", [](ServiceRecord& service) { service.monthlyCost = money("9"); });
    addService(acme, "Warned", [](ServiceRecord& service) {
        service.setStatus(ServiceStatus::warning);
        service.yearlyCost = money("100");
        service.setBillingCycle(BillingCycle::annual);
    });
    archiveFlag(old);

    const DashboardScreen dashboard = screen();
    ASSERT_EQ(dashboard.stats().size(), 5U);
    EXPECT_EQ(dashboard.stats()[0].value, "1");
    // Active services count whatever the organization; money skips the archived one.
    EXPECT_EQ(dashboard.stats()[1].value, "2");
    EXPECT_EQ(dashboard.stats()[2].value, "$1,242.83");
    EXPECT_EQ(dashboard.stats()[3].value, "$14,914");
    EXPECT_EQ(dashboard.stats()[2].accessibleText(), "Monthly Spend: $1,242.83");
}

TEST_F(DashboardScreenTest, AlertsListExpiredThenTheNextThreeDaysWithLevelsFixedBySection) {
    Organization& acme = addOrganization("Acme");
    expiring(acme, "Lapsed an hour ago", m_clock.now() - 1h);
    expiring(acme, "Lapsed last week", daysFromNow(-7));
    expiring(acme, "Three days away", daysFromNow(3));
    // Its own state is "upcoming" (2 whole days), but the banner is critical.
    expiring(acme, "Two and a half days", daysFromNow(2, 12h));
    expiring(acme, "Just past three days", daysFromNow(3, 1min));
    expiring(acme, "Next month", daysFromNow(30, -1min));
    expiring(acme, "Far away", daysFromNow(31));
    archiveFlag(expiring(acme, "Archived and lapsed", daysFromNow(-1)));
    archiveFlag(expiring(acme, "Archived and due", daysFromNow(1)));

    DashboardScreen dashboard = screen();
    EXPECT_THAT(alertTexts(dashboard),
                ElementsAre("Lapsed last week: Expired [expired]",
                            "Lapsed an hour ago: Expired [expired]",
                            "Two and a half days: Expires in 2 day(s) [critical]",
                            "Three days away: Expires in 3 day(s) [critical]"));
    EXPECT_EQ(dashboard.alerts()[2].accessibleText(),
              "Alert: Two and a half days, Expires in 2 day(s)");
    // The three-day service is in both places.
    EXPECT_THAT(titlesOf(dashboard.expiringThisMonth()),
                ElementsAre("Two and a half days", "Three days away", "Just past three days",
                            "Next month"));

    // A banner opens its service; "View All" switches the sidebar.
    m_state.setSelectedSidebarItem(SidebarItem::allExpenses);
    dashboard.open(*dashboard.alerts()[0].service);
    EXPECT_EQ(m_state.selectedService(), dashboard.alerts()[0].service);
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
    m_state.setSelectedService(nullptr);
    dashboard.viewAll();
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::expiringSoon);
}

TEST_F(DashboardScreenTest, RecentlyUpdatedKeepsTheFiveLatestNewestFirstAndTitleOrderOnTies) {
    Organization& acme = addOrganization("Acme");
    const Instant now = m_clock.now();
    // Titles in store (title) order are A..G; their update times are shuffled.
    const std::vector<std::pair<std::string, std::chrono::hours>> updates{
        {"A", 5h}, {"B", 1h}, {"C", 7h}, {"D", 3h}, {"E", 3h}, {"F", 6h}, {"G", 2h}};
    for (const auto& [title, age] : updates) {
        addService(acme, title, [&](ServiceRecord& service) { service.updatedAt = now - age; });
    }
    archiveFlag(addService(acme, "Archived", [&](ServiceRecord& s) { s.updatedAt = now; }));

    DashboardScreen dashboard = screen();
    // B (1h), G (2h), then D and E both 3h old in title order, then A (5h); F and C are older.
    EXPECT_THAT(titlesOf(dashboard.recentlyUpdated()), ElementsAre("B", "G", "D", "E", "A"));

    // An edit moves a service to the front once the dashboard reads the store again.
    ServiceRecord& c = *store().fetchAllServices()[2];
    c.updatedAt = now;
    store().noteChanged(c);
    dashboard.reload();
    EXPECT_THAT(titlesOf(dashboard.recentlyUpdated()), ElementsAre("C", "B", "G", "D", "E"));
}

TEST_F(DashboardScreenTest, DueInTheNextThirtyDaysAddsEachChargeFallingDueInTheWindow) {
    Organization& acme = addOrganization("Acme");
    const auto due = [&](const std::string& title, BillingCycle cycle, Instant date,
                         const char* yearly, const char* monthly) -> ServiceRecord& {
        return addService(acme, title, [&](ServiceRecord& service) {
            service.setBillingCycle(cycle);
            service.expirationDate = date;
            if (yearly != nullptr) {
                service.yearlyCost = money(yearly);
            }
            if (monthly != nullptr) {
                service.monthlyCost = money(monthly);
            }
        });
    };
    // A year's charge, not its monthly share.
    due("Domain", BillingCycle::annual, daysFromNow(5), "15", nullptr);
    // Renews after the window: nothing of it is due in it, as the renewal list says.
    due("VPS", BillingCycle::monthly, daysFromNow(40), nullptr, "10");
    // Renews within the hour; its next renewal, a month on, is past the window's 30 days.
    due("Mail", BillingCycle::monthly, daysFromNow(0, 1h), nullptr, "4");
    // Three months' charge, just inside the window's end; the next one just outside.
    due("Backups", BillingCycle::quarterly, daysFromNow(30, -1min), nullptr, "2");
    due("Hosting", BillingCycle::annual, daysFromNow(30), "100", nullptr);
    due("Lapsed", BillingCycle::annual, daysFromNow(-1), "40", nullptr);
    archiveFlag(due("Archived", BillingCycle::annual, daysFromNow(2), "50", nullptr));

    const DashboardScreen dashboard = screen();
    ASSERT_EQ(dashboard.stats().size(), 5U);
    EXPECT_EQ(dashboard.stats()[4].accessibleText(), "Due in the Next 30 Days: $25");
}

TEST_F(DashboardScreenTest, CostsDueFallInTheMonthOfEachRenewalAlongTheCycle) {
    Organization& acme = addOrganization("Acme");
    const auto add = [&](const std::string& title, Instant date, const char* monthly,
                         const char* yearly, BillingCycle cycle) -> ServiceRecord& {
        return addService(acme, title, [&](ServiceRecord& service) {
            service.expirationDate = date;
            service.monthlyCost = money(monthly);
            service.yearlyCost = money(yearly);
            service.setBillingCycle(cycle);
        });
    };
    add("Monthly", utc(2026, 3, 20, 12), "10", "0", BillingCycle::monthly);
    // 120 a year paid quarterly: 30 at each renewal, in April, July, October and January.
    add("Quarterly", utc(2026, 4, 5, 12), "0", "120", BillingCycle::quarterly);
    // 02:00 UTC on 1 April is still 31 March in New York: a year's 60 falls in March.
    add("Late March", utc(2026, 4, 1, 2), "5", "0", BillingCycle::annual);
    // Lapsed this month: still due this month. Lapsed before it: left out.
    add("Earlier this month", utc(2026, 3, 2, 12), "1", "0", BillingCycle::monthly);
    add("Lapsed in February", utc(2026, 2, 20, 12), "7", "0", BillingCycle::monthly);
    add("Beyond the window", utc(2027, 3, 1, 6), "0", "100", BillingCycle::annual);
    add("No cost", utc(2026, 3, 15, 12), "0", "0", BillingCycle::monthly);
    // Bought once: its 80 falls due once, on its date.
    add("One-off", utc(2026, 3, 15, 12), "0", "80", BillingCycle::oneTime);
    archiveFlag(add("Archived", utc(2026, 3, 15, 12), "50", "0", BillingCycle::monthly));

    const DashboardScreen dashboard = screen();
    ASSERT_TRUE(dashboard.costsDue().hasCostsDue());
    std::vector<std::string> months;
    for (const ChartBar& bar : dashboard.costsDue().bars()) {
        months.push_back(bar.label + " " + bar.valueText);
    }
    EXPECT_THAT(months,
                ElementsAre("Mar $151", "Apr $41", "May $11", "Jun $11", "Jul $41", "Aug $11",
                            "Sep $11", "Oct $41", "Nov $11", "Dec $11", "Jan $41", "Feb $11"));
    EXPECT_DOUBLE_EQ(dashboard.costsDue().bars()[0].fraction, 1.0);
    EXPECT_NEAR(dashboard.costsDue().bars()[1].fraction, 41.0 / 151.0, 1e-12);
    EXPECT_EQ(dashboard.costsDue().bars()[0].accessibleText, "March 2026: $151 due");
    EXPECT_EQ(dashboard.costsDue().bars()[10].accessibleText, "January 2027: $41 due");
}

// Each bar adds up what is billed at each renewal, the same charge the renewal rows and the report
// show: the yearly amount of an annual service even when a monthly one is entered beside it, and
// a one-time purchase once, in the month it falls due.
TEST_F(DashboardScreenTest, CostsDueChargeWhatEachBillingPeriodBills) {
    Organization& acme = addOrganization("Acme");
    const auto add = [&](const std::string& title, Instant date, const char* monthly,
                         const char* yearly, BillingCycle cycle) {
        addService(acme, title, [&](ServiceRecord& service) {
            service.expirationDate = date;
            service.monthlyCost = money(monthly);
            service.yearlyCost = money(yearly);
            service.setBillingCycle(cycle);
        });
    };
    add("Annual with both", utc(2026, 5, 15, 12), "10", "100", BillingCycle::annual);
    add("Biennial with both", utc(2026, 6, 15, 12), "5", "200", BillingCycle::biennial);
    add("Licence", utc(2026, 8, 15, 12), "0", "80", BillingCycle::oneTime);
    // A quarter of 100 a year: exactly 25 at each renewal.
    add("Quarterly", utc(2026, 9, 15, 12), "0", "100", BillingCycle::quarterly);

    const DashboardScreen dashboard = screen();
    std::vector<std::string> months;
    for (const ChartBar& bar : dashboard.costsDue().bars()) {
        months.push_back(bar.label + " " + bar.valueText);
    }
    EXPECT_THAT(months, ElementsAre("Mar $0", "Apr $0", "May $100", "Jun $200", "Jul $0", "Aug $80",
                                    "Sep $25", "Oct $0", "Nov $0", "Dec $25", "Jan $0", "Feb $0"));
    EXPECT_DOUBLE_EQ(dashboard.costsDue().bars()[3].fraction, 1.0);
    EXPECT_DOUBLE_EQ(dashboard.costsDue().bars()[2].fraction, 0.5);
}

} // namespace
} // namespace vorlane::testing
