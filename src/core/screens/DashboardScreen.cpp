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

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>

namespace vorlane {

namespace {

// The month of `instant` in the user's zone and locale, written after an ICU skeleton ("MMM" for
// "Mar", "MMMMy" for "March 2026"); empty when ICU cannot.
class MonthWriter {
public:
    MonthWriter(const UserCalendar& calendar, const char16_t* skeleton) {
        UErrorCode status = U_ZERO_ERROR;
        m_format.reset(icu::DateFormat::createInstanceForSkeleton(
            icu::UnicodeString(skeleton), icu::Locale::getDefault(), status));
        if (U_FAILURE(status)) {
            m_format.reset();
            return;
        }
        const std::string zone = calendar.timeZoneId();
        m_format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)));
    }

    std::string write(Instant instant) const {
        if (!m_format) {
            return {};
        }
        icu::UnicodeString text;
        m_format->format(static_cast<UDate>(instant.time_since_epoch().count()), text);
        std::string utf8;
        text.toUTF8String(utf8);
        return utf8;
    }

private:
    std::unique_ptr<icu::DateFormat> m_format;
};

} // namespace

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
    makeCostsDue();
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
    for (const ServiceRecord* service : m_store.fetchAllServices(false)) {
        const Decimal charge = chargePerPeriod(*service);
        if (charge.isZero() || charge.isNegative()) {
            continue;
        }
        const auto dates = renewalDatesBetween(*service, now, *end, m_calendar);
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

void DashboardScreen::makeCostsDue() {
    m_costsDue.clear();
    m_hasCostsDue = false;
    // Where each month of the window begins, and where the window ends.
    std::array<Instant, chartMonths + 1> starts{};
    const std::optional<Instant> first = m_calendar.startOfMonth(m_calendar.now());
    if (!first) {
        return;
    }
    for (int month = 0; month <= chartMonths; ++month) {
        const std::optional<Instant> start =
            m_calendar.adding(UserCalendar::Unit::month, month, *first);
        if (!start) {
            return;
        }
        starts[static_cast<std::size_t>(month)] = *start;
    }

    // Effective monthly costs summed by the month of the first renewal and the step, and only
    // then multiplied and spread along the cycle: a dozen multiplications instead of one per
    // service.
    std::map<std::pair<int, int>, Decimal> byMonthAndStep;
    for (const ServiceRecord* service :
         m_store.fetchExpiringBetween(starts.front(), starts.back())) {
        const Decimal monthly = m_store.effectiveMonthlyCost(*service);
        if (monthly.isZero() || monthly.isNegative()) {
            continue;
        }
        // Calendar arithmetic keeps the month exact (31 January plus a month is still February),
        // so every later renewal lands a whole step of months further on.
        const int month = static_cast<int>(
            std::upper_bound(starts.begin(), starts.end(), *service->expirationDate) -
            starts.begin() - 1);
        byMonthAndStep[{month, service->billingCycle().renewalMonths()}] += monthly;
    }
    std::array<Decimal, chartMonths> due{};
    for (const auto& [key, monthly] : byMonthAndStep) {
        const auto [firstMonth, step] = key;
        const Decimal amount = monthly * Decimal(step);
        for (int month = firstMonth; month < chartMonths; month += step) {
            due[static_cast<std::size_t>(month)] += amount;
        }
    }
    const Decimal largest = *std::max_element(due.begin(), due.end());
    m_hasCostsDue = largest > Decimal();
    const MonthWriter shortMonth(m_calendar, u"MMM");
    const MonthWriter longMonth(m_calendar, u"MMMMy");
    for (std::size_t month = 0; month < due.size(); ++month) {
        const std::string amount = currencyFormatted(due[month]);
        m_costsDue.push_back({shortMonth.write(starts[month]), amount,
                              ChartBar::fractionOf(due[month], largest), Palette::Color::blue,
                              longMonth.write(starts[month]) + ": " + amount + " due"});
    }
}

void DashboardScreen::open(ServiceRecord& service) {
    m_state.navigateTo(service);
}

void DashboardScreen::viewAll() {
    m_state.setSelectedSidebarItem(SidebarItem::expiringSoon);
}

} // namespace vorlane
