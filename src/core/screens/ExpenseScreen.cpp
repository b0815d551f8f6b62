// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ExpenseScreen.h"

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <unordered_map>

namespace vorlane {

namespace {

bool isPositive(const Decimal& amount) {
    return !amount.isZero() && !amount.isNegative();
}

bool carriesCost(const ServiceRecord& service) {
    return isPositive(service.monthlyCost) || isPositive(service.yearlyCost);
}

std::string countText(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

} // namespace

std::string_view ExpenseScreen::label(GroupBy groupBy) {
    switch (groupBy) {
    case GroupBy::organization:
        return "By Organization";
    case GroupBy::provider:
        return "By Provider";
    case GroupBy::type:
        return "By Service Type";
    }
    return "By Organization";
}

std::string ExpenseScreen::ServiceLine::costText() const {
    return currencyFormatted(monthlyCost);
}

std::string ExpenseScreen::ServiceLine::accessibleText() const {
    return std::string(title) + ", " + std::string(cycleLabel) + ", " + costText() + " a month";
}

std::string ExpenseScreen::Card::accessibleText() const {
    return title + ": " + monthlyText + " a month, " + yearlyText + " a year, " +
           countText(services.size(), "service", "services");
}

ExpenseScreen::ExpenseScreen(DataStore& store, const UserCalendar& calendar, GroupBy groupBy)
    : m_store(store)
    , m_calendar(calendar)
    , m_groupBy(groupBy) {
    reload();
}

void ExpenseScreen::reload() {
    m_paidServices.clear();
    for (ServiceRecord* service : m_store.fetchAllServices(false)) {
        if (carriesCost(*service)) {
            m_paidServices.push_back({service, m_store.effectiveMonthlyCost(*service)});
        }
    }
    m_organizationCount = 0;
    const std::vector<Organization*> organizations = m_store.fetchOrganizations(false);
    m_hasOrganizations = !organizations.empty();
    for (const Organization* organization : organizations) {
        if (m_store.monthlyCost(*organization) > Decimal() ||
            m_store.yearlyCost(*organization) > Decimal()) {
            ++m_organizationCount;
        }
    }
    m_summary = {
        {"Monthly Total", currencyFormatted(m_store.totalMonthlyCost()), "dollarsign.circle",
         Palette::Color::blue},
        {"Yearly Estimate", currencyFormatted(m_store.totalYearlyCost()), "calendar",
         Palette::Color::purple},
        {"Paid Services", std::to_string(m_paidServices.size()), "creditcard",
         Palette::Color::green},
        {"Organizations", std::to_string(m_organizationCount), "building.2",
         Palette::Color::indigo},
    };
    m_costsDue.emplace(m_store, m_calendar);
    group();
}

void ExpenseScreen::setGroupBy(GroupBy groupBy) {
    if (groupBy != m_groupBy) {
        m_groupBy = groupBy;
        group();
    }
}

const Organization* ExpenseScreen::reportOrganization(std::optional<std::size_t> card) const {
    // Every card by organization lists at least one of its services, which all belong to it.
    if (m_groupBy != GroupBy::organization || !card || *card >= m_cards.size() ||
        m_cards[*card].services.empty()) {
        return nullptr;
    }
    return m_cards[*card].services.front().service->organization;
}

std::string ExpenseScreen::chartTitle() const {
    switch (m_groupBy) {
    case GroupBy::organization:
        return "Monthly Cost by Organization";
    case GroupBy::provider:
        return "Monthly Cost by Provider";
    case GroupBy::type:
        return "Monthly Cost by Service Type";
    }
    return {};
}

void ExpenseScreen::group() {
    m_cards.clear();
    switch (m_groupBy) {
    case GroupBy::organization:
        groupByOrganization();
        break;
    case GroupBy::provider:
        groupByProvider();
        break;
    case GroupBy::type:
        groupByType();
        break;
    }
    for (Card& card : m_cards) {
        std::stable_sort(card.services.begin(), card.services.end(),
                         [](const ServiceLine& a, const ServiceLine& b) {
                             return a.monthlyCost > b.monthlyCost;
                         });
        card.monthlyText = currencyFormatted(card.monthly);
        card.yearlyText = currencyFormatted(card.yearly);
    }
    makeChart();
}

namespace {

ExpenseScreen::ServiceLine lineFor(ServiceRecord* service, const Decimal& monthlyCost) {
    const ServiceType type = service->serviceType();
    return {
        service,    type.icon(), type.tintColor(), service->title, service->billingCycle().label(),
        monthlyCost};
}

} // namespace

void ExpenseScreen::groupByOrganization() {
    std::unordered_map<const Organization*, std::size_t> cardOf;
    for (Organization* organization : m_store.fetchOrganizations(false)) {
        const Decimal monthly = m_store.monthlyCost(*organization);
        const Decimal yearly = m_store.yearlyCost(*organization);
        if (monthly > Decimal() || yearly > Decimal()) {
            cardOf.emplace(organization, m_cards.size());
            m_cards.push_back({organization->name,
                               "building.2",
                               organization->avatarColor(),
                               monthly,
                               yearly,
                               {},
                               {},
                               {}});
        }
    }
    // The card lists the organization's own services that carry a cost.
    for (const PaidService& paid : m_paidServices) {
        const auto card = cardOf.find(paid.service->organization);
        if (card != cardOf.end()) {
            m_cards[card->second].services.push_back(lineFor(paid.service, paid.monthlyCost));
        }
    }
}

void ExpenseScreen::groupByProvider() {
    // Exact, case-sensitive provider text in plain byte order: "Acme" and "acme" are two cards,
    // and services without a provider make a card of their own.
    std::map<std::string_view, Card> byProvider;
    for (const PaidService& paid : m_paidServices) {
        auto [entry, inserted] = byProvider.try_emplace(paid.service->provider);
        Card& card = entry->second;
        if (inserted) {
            // The empty provider sorts first but needs a title a person can read.
            card.title = paid.service->provider.empty() ? "No Provider" : paid.service->provider;
            card.icon = "building";
            card.color = Palette::Color::blue;
        }
        card.monthly += paid.monthlyCost;
        card.services.push_back(lineFor(paid.service, paid.monthlyCost));
    }
    for (auto& [provider, card] : byProvider) {
        card.yearly = card.monthly * Decimal(12);
        m_cards.push_back(std::move(card));
    }
}

void ExpenseScreen::groupByType() {
    std::array<std::optional<Card>, ServiceType::caseCount> byType;
    for (const PaidService& paid : m_paidServices) {
        const ServiceType type = paid.service->serviceType();
        std::optional<Card>& card = byType[type.index()];
        if (!card) {
            card =
                Card{std::string(type.label()), type.icon(), type.tintColor(), {}, {}, {}, {}, {}};
        }
        card->monthly += paid.monthlyCost;
        card->services.push_back(lineFor(paid.service, paid.monthlyCost));
    }
    for (std::optional<Card>& card : byType) {
        if (card) {
            card->yearly = card->monthly * Decimal(12);
            m_cards.push_back(std::move(*card));
        }
    }
    // By label in code-point order, not the locale's: "cPanel" comes after "VPS".
    std::stable_sort(m_cards.begin(), m_cards.end(),
                     [](const Card& a, const Card& b) { return a.title < b.title; });
}

void ExpenseScreen::makeChart() {
    m_chart.clear();
    std::vector<std::size_t> shown(m_cards.size());
    std::iota(shown.begin(), shown.end(), std::size_t{0});
    Decimal others;
    std::size_t otherCount = 0;
    if (m_cards.size() > chartBarLimit) {
        // The costliest groups keep their bars (ties: the earlier card), then back in card order.
        std::stable_sort(shown.begin(), shown.end(), [this](std::size_t a, std::size_t b) {
            return m_cards[a].monthly > m_cards[b].monthly;
        });
        for (std::size_t i = chartBarLimit - 1; i < shown.size(); ++i) {
            others += m_cards[shown[i]].monthly;
        }
        otherCount = shown.size() - (chartBarLimit - 1);
        shown.resize(chartBarLimit - 1);
        std::sort(shown.begin(), shown.end());
    }
    Decimal largest = others;
    for (const std::size_t index : shown) {
        largest = std::max(largest, m_cards[index].monthly);
    }
    for (const std::size_t index : shown) {
        const Card& card = m_cards[index];
        m_chart.push_back({card.title, card.monthlyText,
                           ChartBar::fractionOf(card.monthly, largest), card.color,
                           card.title + ": " + card.monthlyText + " a month"});
    }
    if (otherCount > 0) {
        const std::string othersTitle = "Others (" + std::to_string(otherCount) + ")";
        const std::string amount = currencyFormatted(others);
        m_chart.push_back(
            {othersTitle, amount, ChartBar::fractionOf(others, largest), Palette::Color::secondary,
             countText(otherCount, "other group", "other groups") + ": " + amount + " a month"});
    }
}

} // namespace vorlane
