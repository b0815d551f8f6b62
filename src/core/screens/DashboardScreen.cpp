// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/DashboardScreen.h"

#include "app/AppState.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "money/ChargePerPeriod.h"
#include "money/RenewalDates.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"
#include "util/UserCalendar.h"

#include <optional>

namespace vorlane {

std::string DashboardScreen::Alert::accessibleText() const {
    return "Alert: " + title + ", " + message;
}

DashboardScreen::DashboardScreen(DataStore& store, AppState& state, const UserCalendar& calendar)
    : m_store(store)
    , m_state(state)
    , m_calendar(calendar) {
    reload();
}

void DashboardScreen::reload() {
    m_stats = {
        {"Organizations", std::to_string(m_store.fetchOrganizations(false).size()), "building.2",
         Palette::Color::indigo},
        {"Active Services", std::to_string(m_store.totalActiveServices()), "checkmark.circle",
         Palette::Color::green},
        {"Monthly Spend", currencyFormatted(m_store.totalMonthlyCost()), "dollarsign.circle",
         Palette::Color::blue},
        {"Yearly Estimate", currencyFormatted(m_store.totalYearlyCost()), "calendar",
         Palette::Color::purple},
        {std::string(dueSoonTitle), currencyFormatted(dueSoon()), "creditcard",
         Palette::Color::orange},
    };
    makeAlerts();
    m_expiring = m_store.fetchExpiringSoon(listHorizonDays);
    makeRecent();
    m_costsDue.emplace(m_store, m_calendar);
}

Decimal DashboardScreen::dueSoon() const {
    const Instant now = m_calendar.now();
    const std::optional<Instant> end =
        m_calendar.adding(UserCalendar::Unit::day, listHorizonDays, now);
    Decimal due;
    if (!end) {
        return due;
    }
    // Every charge falling in the window: a monthly service can fall due more than once in it.
    // The expiration index lists the services renewing in it without ordering the vault.
    for (const ServiceRecord* service : m_store.fetchExpiringBetween(now, *end)) {
        const Decimal charge = m_store.chargePerPeriod(*service);
        if (charge.isZero() || charge.isNegative()) {
            continue;
        }
        const auto dates =
            renewalDatesBetween(*service, *service->expirationDate, *end, m_calendar);
        due += charge * Decimal(static_cast<std::int64_t>(dates.size()));
    }
    return due;
}

void DashboardScreen::makeAlerts() {
    m_alerts.clear();
    for (ServiceRecord* service : m_store.fetchExpired()) {
        m_alerts.push_back({service, ExpirationState::expired, service->title, "Expired"});
    }
    for (ServiceRecord* service : m_store.fetchExpiringSoon(alertHorizonDays)) {
        const int days = service->daysUntilExpiration(m_calendar).value_or(0);
        m_alerts.push_back({service, ExpirationState::critical, service->title,
                            "Expires in " + std::to_string(days) + " day(s)"});
    }
}

void DashboardScreen::makeRecent() {
    m_recent = m_store.fetchRecentlyUpdated(recentLimit);
}

void DashboardScreen::open(ServiceRecord& service) {
    m_state.navigateTo(service);
}

void DashboardScreen::viewAll() {
    m_state.setSelectedSidebarItem(SidebarItem::expiringSoon);
}

} // namespace vorlane
