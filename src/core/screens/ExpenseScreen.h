// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "screens/ChartBar.h"
#include "screens/CostsDueChart.h"
#include "screens/StatCard.h"
#include "util/Decimal.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class DataStore;
struct Organization;
struct ServiceRecord;
class UserCalendar;

// The "Expense Overview" screen: what the vault's services cost each month and year, in four
// summary cards and in cards grouped by organization, provider or service type, with a bar chart
// of the groups' monthly costs, and what falls due in each of the next twelve months.
//
// Only services that are not archived and carry a cost (a monthly or yearly amount above zero)
// count. Built from the store on construction and on `reload` (the widget calls it whenever the
// store changes); the records it points to belong to the store and stay valid until the next
// change. Main thread only.
class ExpenseScreen {
public:
    enum class GroupBy { organization, provider, type };
    static constexpr std::array<GroupBy, 3> groupings{GroupBy::organization, GroupBy::provider,
                                                      GroupBy::type};
    // "By Organization", "By Provider", "By Service Type".
    static std::string_view label(GroupBy groupBy);

    static constexpr std::string_view title = "Expense Overview";
    static constexpr std::string_view subtitle = "Track recurring costs across all organizations";
    static constexpr std::string_view groupByTitle = "Group by";
    // In place of the cards and the chart when no service carries a cost.
    static constexpr std::string_view emptyText = "No services with a cost yet.";
    // More groups than this and the chart keeps the costliest ones, in card order, and adds up
    // the rest in one last bar: a bar per organization of a large agency reads as noise.
    static constexpr std::size_t chartBarLimit = 16;

    // One service in a card: the kind's icon in its tint, the title, the billing cycle and the
    // effective monthly cost.
    struct ServiceLine {
        ServiceRecord* service = nullptr;
        std::string_view typeIcon;
        Palette::Color typeTint = Palette::Color::secondary;
        // The record's own title, not a copy (tens of thousands of them per rebuild): valid
        // until the store changes, when the screen is rebuilt anyway.
        std::string_view title;
        std::string_view cycleLabel;
        Decimal monthlyCost;

        // The cost as shown. Written when drawn rather than when the screen is built: a large
        // vault has tens of thousands of lines and only a screenful is ever on view.
        std::string costText() const;
        // "Main VPS, Monthly, $12.9 a month".
        std::string accessibleText() const;
    };

    // One group: its title ("No Provider" for services without one) with an icon and colour, its
    // monthly and yearly amounts, and its services, costliest first (equal costs keep title order).
    struct Card {
        std::string title;
        std::string_view icon;
        Palette::Color color = Palette::Color::secondary;
        Decimal monthly;
        Decimal yearly;
        std::string monthlyText;
        std::string yearlyText;
        std::vector<ServiceLine> services;

        // "Acme Corp: $120 a month, $1,440 a year, 3 services".
        std::string accessibleText() const;
    };

    // The calendar says what "now" is for the months ahead.
    ExpenseScreen(DataStore& store, const UserCalendar& calendar,
                  GroupBy groupBy = GroupBy::organization);

    // Reads the store again, with "now" taken afresh.
    void reload();

    GroupBy groupBy() const { return m_groupBy; }
    // Regroups the cards and the chart; the summary stays as it is.
    void setGroupBy(GroupBy groupBy);

    // "Monthly Total", "Yearly Estimate", "Paid Services", "Organizations".
    const std::vector<StatCard>& summary() const { return m_summary; }
    const std::vector<Card>& cards() const { return m_cards; }

    // "Monthly Cost by Organization" and so on, after the grouping.
    std::string chartTitle() const;
    // One bar per card in card order (see `chartBarLimit`), the length by monthly amount.
    const std::vector<ChartBar>& chart() const { return m_chart; }

    // "Costs Due by Month", the same chart as the dashboard's; the grouping does not change it.
    const CostsDueChart& costsDue() const { return *m_costsDue; }

    // "Export Cost Report…" (see CostReportExport) needs an organization that is not archived.
    bool canExportCostReport() const { return m_hasOrganizations; }
    // The organization the report's picker starts at: the organization of card `card` when the
    // cards are by organization, else none (the picker then starts at its first).
    const Organization* reportOrganization(std::optional<std::size_t> card) const;

    std::size_t paidServiceCount() const { return m_paidServices.size(); }
    std::size_t organizationCount() const { return m_organizationCount; }

private:
    struct PaidService {
        ServiceRecord* service;
        Decimal monthlyCost; // effective, worked out once per reload
    };

    void group();
    void groupByOrganization();
    void groupByProvider();
    void groupByType();
    void makeChart();

    DataStore& m_store;
    const UserCalendar& m_calendar;
    GroupBy m_groupBy;
    std::vector<PaidService> m_paidServices; // in the store's title order
    std::size_t m_organizationCount = 0;
    bool m_hasOrganizations = false;
    std::vector<StatCard> m_summary;
    std::vector<Card> m_cards;
    std::vector<ChartBar> m_chart;
    std::optional<CostsDueChart> m_costsDue; // set by every reload
};

} // namespace vorlane
