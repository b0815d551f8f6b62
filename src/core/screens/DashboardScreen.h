// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ExpirationState.h"
#include "screens/CostsDueChart.h"
#include "screens/StatCard.h"
#include "util/Decimal.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class AppState;
class DataStore;
struct ServiceRecord;
class UserCalendar;

// The first screen: a greeting, four summary cards, a chart of the costs falling due in each of
// the next twelve months, urgent expiration alerts, the services expiring within 30 days and the
// five most recently changed services. It only reads, except for navigation: opening a service
// and "View All".
//
// Built on construction and on `reload` (the widget calls it whenever the store changes); the
// records it lists belong to the store and stay valid until the next change. The horizons are
// fixed numbers, never the user's warning-days setting. Main thread only.
class DashboardScreen {
public:
    static constexpr int alertHorizonDays = 3;
    static constexpr int listHorizonDays = 30;
    static constexpr std::size_t recentLimit = 5;

    static constexpr std::string_view title = "Welcome to Vorlane";
    static constexpr std::string_view alertsTitle = "Alerts";
    static constexpr std::string_view expiringTitle = "Expiring This Month";
    static constexpr std::string_view viewAllTitle = "View All";
    static constexpr std::string_view recentTitle = "Recently Updated";
    // The stat card of the charges (each billing period's amount) falling due from now to
    // `listHorizonDays` days on, archived services left out: what the renewal list shows as due
    // for those days, counted as the costs-due chart counts it (a service is charged at its
    // expiration date and again at each renewal after it; a lapsed one is not projected).
    static constexpr std::string_view dueSoonTitle = "Due in the Next 30 Days";
    static constexpr std::string_view expiringEmptyText = "Nothing expires in the next 30 days.";
    static constexpr std::string_view recentEmptyText = "No services yet.";

    // One alert banner. The level is fixed by the list the service came from (`expired` for the
    // expired ones, `critical` for those due within 3 days), not read from the service; the
    // banner draws the level's icon in its colour, the title and the message.
    struct Alert {
        ServiceRecord* service = nullptr;
        ExpirationState level = ExpirationState::none;
        std::string title;
        std::string message; // "Expired", "Expires in 2 day(s)"

        // "Alert: Main VPS, Expired".
        std::string accessibleText() const;
    };

    DashboardScreen(DataStore& store, AppState& state, const UserCalendar& calendar);

    // Reads the store again, with "now" taken afresh.
    void reload();

    // "Organizations" (those not archived), "Active Services", "Monthly Spend", "Yearly Estimate".
    const std::vector<StatCard>& stats() const { return m_stats; }

    // Expired services (oldest first), then those expiring within 3 days (soonest first).
    const std::vector<Alert>& alerts() const { return m_alerts; }
    // The "Alerts" section is shown only when there is at least one.
    bool showsAlerts() const { return !m_alerts.empty(); }
    // Services expiring after now and within 30 days, soonest first.
    const std::vector<ServiceRecord*>& expiringThisMonth() const { return m_expiring; }
    // Non-archived services by last change, newest first (equal times keep title order), at most 5.
    const std::vector<ServiceRecord*>& recentlyUpdated() const { return m_recent; }

    // "Costs Due by Month", built afresh with the rest.
    const CostsDueChart& costsDue() const { return *m_costsDue; }

    // What a click on a banner or a row does: the service's detail.
    void open(ServiceRecord& service);
    // "View All": the "Expiring Soon" destination.
    void viewAll();

private:
    void makeAlerts();
    void makeRecent();
    Decimal dueSoon() const;

    DataStore& m_store;
    AppState& m_state;
    const UserCalendar& m_calendar;
    std::vector<StatCard> m_stats;
    std::vector<Alert> m_alerts;
    std::vector<ServiceRecord*> m_expiring;
    std::vector<ServiceRecord*> m_recent;
    std::optional<CostsDueChart> m_costsDue; // set by every reload
};

} // namespace vorlane
