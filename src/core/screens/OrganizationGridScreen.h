// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/OrganizationActions.h"
#include "model/Palette.h"
#include "screens/EmptyState.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class AppState;
class DataStore;
struct Organization;
class UserCalendar;

// Which organizations a grid shows: `all` behind the "Organizations" destination, `favorites`
// behind "Favorites"; `active` and `inactive` narrow `all` by the organization's active flag.
enum class OrganizationFilter { all, favorites, active, inactive };

// The grid of organization cards: the organizations of one filter in the chosen order, each card's
// two faces as text, the caption, the empty state and the cards' menu. `rebuild` re-reads the
// store (the widget calls it when the store changes); everything else reads what it built.
// Main thread; the store, state and calendar must outlive the screen, and the cards point at
// records that are only valid until the store changes.
class OrganizationGridScreen {
public:
    // Raw values and picker labels at once: "Name", "Recent", "Services", "Cost".
    enum class SortOrder { name, recent, services, cost };
    static constexpr std::array<SortOrder, 4> sortOrders{SortOrder::name, SortOrder::recent,
                                                         SortOrder::services, SortOrder::cost};
    static std::string_view label(SortOrder order);

    // One row of a card's back face: "Active", "Expiring", "Expired", "Monthly".
    struct SummaryRow {
        std::string icon;
        std::string label;
        std::string value;
        Palette::Color color;
    };

    struct Card {
        Organization* organization;
        // Front face.
        std::string name;
        std::string projectName;
        bool isFavorite;
        std::size_t expiringCount;  // the badge is shown only when not zero
        std::string servicesText;   // "%lld services" of the active services, plural even for 1
        Palette::Color avatarColor; // also the border's colour
        // Back face.
        Palette::Color activeDotColor; // green for an active client, secondary otherwise
        std::array<SummaryRow, 4> summary;
        std::string nextExpirationText; // "Next: Mar 5"; empty without a future expiration
        // What a screen reader says for the card.
        std::string accessibleText;
    };

    OrganizationGridScreen(DataStore& store, AppState& state, const UserCalendar& calendar,
                           OrganizationFilter filter);

    // "Organizations", "Favorites", "Active Clients" or "Inactive Clients".
    std::string_view title() const;
    OrganizationFilter filter() const { return m_filter; }

    SortOrder sortOrder() const { return m_sortOrder; }
    // Rebuilds in the new order.
    void setSortOrder(SortOrder order);

    void rebuild();
    const std::vector<Card>& cards() const { return m_cards; }
    // "1 organization", "2 organizations".
    std::string countText() const;
    // Set exactly when there are no cards.
    std::optional<EmptyState> emptyState() const;
    // "Add Organization": opens the new-organization sheet.
    void performEmptyStateAction();

    // A click or Enter on a card.
    void open(std::size_t row);
    std::vector<OrganizationActions::MenuItem> menu(std::size_t row) const;
    void perform(OrganizationActions::Action action, std::size_t row);

private:
    std::vector<Organization*> filtered() const;
    Card card(Organization& organization) const;

    DataStore& m_store;
    AppState& m_state;
    const UserCalendar& m_calendar;
    OrganizationActions m_actions;
    OrganizationFilter m_filter;
    SortOrder m_sortOrder = SortOrder::name;
    std::vector<Card> m_cards;
};

} // namespace vorlane
