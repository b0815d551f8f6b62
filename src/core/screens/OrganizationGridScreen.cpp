// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationGridScreen.h"

#include "app/AppState.h"
#include "model/Organization.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"

#include <algorithm>
#include <numeric>

namespace vorlane {

namespace {

Palette::Color whenNonZero(std::size_t count, Palette::Color color) {
    return count > 0 ? color : Palette::Color::secondary;
}

} // namespace

std::string_view OrganizationGridScreen::label(SortOrder order) {
    switch (order) {
    case SortOrder::name:
        return "Name";
    case SortOrder::recent:
        return "Recent";
    case SortOrder::services:
        return "Services";
    case SortOrder::cost:
        return "Cost";
    }
    return "Name";
}

OrganizationGridScreen::OrganizationGridScreen(DataStore& store, AppState& state,
                                               const UserCalendar& calendar,
                                               OrganizationFilter filter)
    : m_store(store)
    , m_state(state)
    , m_calendar(calendar)
    , m_actions(store, state)
    , m_filter(filter) {
    rebuild();
}

std::string_view OrganizationGridScreen::title() const {
    switch (m_filter) {
    case OrganizationFilter::all:
        return "Organizations";
    case OrganizationFilter::favorites:
        return "Favorites";
    case OrganizationFilter::active:
        return "Active Clients";
    case OrganizationFilter::inactive:
        return "Inactive Clients";
    }
    return "Organizations";
}

void OrganizationGridScreen::setSortOrder(SortOrder order) {
    if (order != m_sortOrder) {
        m_sortOrder = order;
        rebuild();
    }
}

std::vector<Organization*> OrganizationGridScreen::filtered() const {
    if (m_filter == OrganizationFilter::favorites) {
        return m_store.fetchFavorites();
    }
    std::vector<Organization*> organizations = m_store.fetchOrganizations(false);
    if (m_filter != OrganizationFilter::all) {
        const bool active = m_filter == OrganizationFilter::active;
        std::erase_if(organizations,
                      [active](const Organization* o) { return o->isActive != active; });
    }
    return organizations;
}

void OrganizationGridScreen::rebuild() {
    std::vector<Organization*> organizations = filtered();
    m_cards.clear();
    m_cards.reserve(organizations.size());
    for (Organization* organization : organizations) {
        m_cards.push_back(card(*organization));
    }
    // The fetch is already in the store's name order, so `name` keeps it as it is. The other
    // orders are stable: ties stay in name order (favourites in the store's order).
    switch (m_sortOrder) {
    case SortOrder::name:
        break;
    case SortOrder::recent:
        std::ranges::stable_sort(m_cards, std::greater<>(),
                                 [](const Card& c) { return c.organization->updatedAt; });
        break;
    case SortOrder::services:
        std::ranges::stable_sort(m_cards, std::greater<>(),
                                 [](const Card& c) { return c.organization->services.size(); });
        break;
    case SortOrder::cost: {
        // Each organization's cost once, not once per comparison.
        std::vector<std::pair<Decimal, std::size_t>> keys;
        keys.reserve(m_cards.size());
        for (std::size_t i = 0; i < m_cards.size(); ++i) {
            keys.emplace_back(m_cards[i].organization->monthlyCost(), i);
        }
        std::ranges::stable_sort(keys, std::greater<>(),
                                 [](const auto& key) -> const Decimal& { return key.first; });
        std::vector<Card> sorted;
        sorted.reserve(m_cards.size());
        for (const auto& key : keys) {
            sorted.push_back(std::move(m_cards[key.second]));
        }
        m_cards = std::move(sorted);
        break;
    }
    }
}

OrganizationGridScreen::Card OrganizationGridScreen::card(Organization& organization) const {
    const std::size_t active = organization.activeServices().size();
    const std::size_t expiring = organization.expiringServices(m_calendar).size();
    const std::size_t expired = organization.expiredServices(m_calendar).size();
    const std::string monthly = currencyFormatted(organization.monthlyCost());
    const std::optional<Instant> next = organization.nextExpiration(m_calendar);

    Card card{
        .organization = &organization,
        .name = organization.name,
        .projectName = organization.projectName,
        .isFavorite = organization.isFavorite,
        .expiringCount = expiring,
        .servicesText = std::to_string(active) + " services",
        .avatarColor = organization.avatarColor(),
        .activeDotColor = organization.isActive ? Palette::Color::green : Palette::Color::secondary,
        .summary = {{
            {"checkmark.circle", "Active", std::to_string(active),
             whenNonZero(active, Palette::Color::green)},
            {"exclamationmark.triangle", "Expiring", std::to_string(expiring),
             whenNonZero(expiring, Palette::Color::orange)},
            {"xmark.circle", "Expired", std::to_string(expired),
             whenNonZero(expired, Palette::Color::red)},
            {"dollarsign.circle", "Monthly", monthly, Palette::Color::blue},
        }},
        .nextExpirationText =
            next ? "Next: " + DateText::format(*next, DateText::Style::monthDay, m_calendar) : "",
        .accessibleText = {},
    };

    std::string& sentence = card.accessibleText;
    sentence = organization.name;
    if (!organization.projectName.empty()) {
        sentence += ", " + organization.projectName;
    }
    sentence += organization.isFavorite ? ", favorite" : "";
    sentence += organization.isActive ? ", active client" : ", inactive client";
    sentence += ": " + std::to_string(active) + " active services, " + std::to_string(expiring) +
                " expiring, " + std::to_string(expired) + " expired, " + monthly + " a month";
    if (!card.nextExpirationText.empty()) {
        sentence += ", " + card.nextExpirationText;
    }
    sentence += ".";
    return card;
}

std::string OrganizationGridScreen::countText() const {
    const std::size_t count = m_cards.size();
    return std::to_string(count) + (count == 1 ? " organization" : " organizations");
}

std::optional<EmptyState> OrganizationGridScreen::emptyState() const {
    if (!m_cards.empty()) {
        return std::nullopt;
    }
    if (m_filter == OrganizationFilter::favorites) {
        return EmptyState{"building.2", "No Favorites",
                          "Star organizations to add them to your favorites.", "Add Organization"};
    }
    return EmptyState{"building.2", "No Organizations Yet",
                      "Add your first client organization to start managing credentials.",
                      "Add Organization"};
}

void OrganizationGridScreen::performEmptyStateAction() {
    m_state.setShowingNewOrganization(true);
}

void OrganizationGridScreen::open(std::size_t row) {
    m_actions.open(*m_cards.at(row).organization);
}

std::vector<OrganizationActions::MenuItem> OrganizationGridScreen::menu(std::size_t row) const {
    return OrganizationActions::menu(*m_cards.at(row).organization);
}

void OrganizationGridScreen::perform(OrganizationActions::Action action, std::size_t row) {
    m_actions.perform(action, *m_cards.at(row).organization);
}

} // namespace vorlane
