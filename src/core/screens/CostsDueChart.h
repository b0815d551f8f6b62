// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ChartBar.h"

#include <string_view>
#include <vector>

namespace vorlane {

class DataStore;
class UserCalendar;

// "Costs Due by Month": what falls due in each of the next twelve months, this month first, one
// bar per month labelled with its short name ("Mar"). A service costs its charge per billing
// period (see chargePerPeriod) at its expiration date and, for a recurring cycle, again at every
// renewal of its cycle after it inside the window; a one-time or unbilled service only once. A
// date before this month is a lapsed renewal and is left out; so are archived services.
//
// Drawn by the dashboard and the expense screen alike, so that both say the same. Built from the
// store and the calendar's "now" on construction; holds no reference to either afterwards. Main
// thread only.
class CostsDueChart {
public:
    static constexpr int months = 12;
    static constexpr std::string_view title = "Costs Due by Month";
    static constexpr std::string_view emptyText = "No renewals with a cost in the next 12 months.";

    CostsDueChart(const DataStore& store, const UserCalendar& calendar);

    // Twelve bars, even when nothing is due; none only when the calendar cannot place the months.
    const std::vector<ChartBar>& bars() const { return m_bars; }
    // False when nothing falls due: the chart gives way to `emptyText`.
    bool hasCostsDue() const { return m_hasCostsDue; }

private:
    std::vector<ChartBar> m_bars;
    bool m_hasCostsDue = false;
};

} // namespace vorlane
