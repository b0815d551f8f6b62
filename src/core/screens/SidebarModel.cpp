// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SidebarModel.h"

#include "app/AppState.h"
#include "model/Organization.h"
#include "store/DataStore.h"

#include <array>
#include <utility>

namespace vorlane {

namespace {

struct Section {
    std::string_view title;
    std::vector<SidebarItem> items;
};

const std::array<Section, 3> destinationSections{{
    {"Navigate", {SidebarItem::dashboard, SidebarItem::organizations}},
    {"Smart Views", {SidebarItem::favorites, SidebarItem::expiringSoon, SidebarItem::expired}},
    {"Library",
     {SidebarItem::allCredentials, SidebarItem::allExpenses, SidebarItem::archive,
      SidebarItem::passwordHealth}},
}};
constexpr std::string_view organizationsSection = "Organizations";

// What the badge of each destination counts, said in words for screen readers.
std::pair<std::string_view, std::string_view> countedThing(SidebarItem item) {
    switch (item.value()) {
    case SidebarItem::organizations:
        return {"organization", "organizations"};
    case SidebarItem::favorites:
        return {"favorite organization", "favorite organizations"};
    case SidebarItem::expiringSoon:
        return {"service expiring within 30 days", "services expiring within 30 days"};
    case SidebarItem::expired:
        return {"expired service", "expired services"};
    case SidebarItem::allCredentials:
        return {"credential", "credentials"};
    case SidebarItem::archive:
        return {"archived organization", "archived organizations"};
    case SidebarItem::passwordHealth:
        return {"password finding", "password findings"};
    case SidebarItem::dashboard:
    case SidebarItem::allExpenses:
        break;
    }
    return {"item", "items"};
}

std::string destinationSentence(SidebarItem item, std::size_t count) {
    std::string sentence(item.displayName());
    if (count > 0) {
        const auto [one, many] = countedThing(item);
        sentence += ", " + std::to_string(count) + " " + std::string(count == 1 ? one : many);
    }
    return sentence;
}

SidebarModel::Row header(std::string_view title) {
    SidebarModel::Row row;
    row.kind = SidebarModel::RowKind::sectionHeader;
    row.title = title;
    row.accessibleText = std::string(title) + " section";
    return row;
}

} // namespace

SidebarModel::SidebarModel(const DataStore& store, const UserCalendar& calendar, AppState& state)
    : m_store(store)
    , m_calendar(calendar)
    , m_state(state) {
    refresh();
}

void SidebarModel::refresh() {
    std::vector<Row> rows;
    for (const Section& section : destinationSections) {
        rows.push_back(header(section.title));
        for (const SidebarItem item : section.items) {
            Row row;
            row.kind = RowKind::destination;
            row.title = item.displayName();
            row.icon = item.icon();
            row.item = item;
            row.count = badgeCount(item);
            row.showsBadge = row.count >= 1;
            row.badgeColor = badgeColor(item);
            row.accessibleText = destinationSentence(item, row.count);
            rows.push_back(std::move(row));
        }
    }
    rows.push_back(header(organizationsSection));
    const std::vector<Organization*> organizations = m_store.fetchOrganizations(false);
    for (std::size_t i = 0; i < organizations.size() && i < quickListSize; ++i) {
        Organization& organization = *organizations[i];
        Row row;
        row.kind = RowKind::organization;
        row.title = organization.name;
        row.organization = &organization;
        row.showsExpiringDot = !organization.expiringServices(m_calendar).empty();
        row.accessibleText = organization.name + ", organization";
        if (row.showsExpiringDot) {
            row.accessibleText += ", has services expiring soon";
        }
        rows.push_back(std::move(row));
    }
    m_rows = std::move(rows);
}

std::size_t SidebarModel::badgeCount(SidebarItem item) const {
    switch (item.value()) {
    case SidebarItem::dashboard:
    case SidebarItem::allExpenses:
        return 0;
    case SidebarItem::organizations:
        return m_store.fetchOrganizations(false).size();
    case SidebarItem::favorites:
        return m_store.fetchFavorites().size();
    case SidebarItem::expiringSoon:
        return m_store.fetchExpiringSoon(expiringSoonDays).size();
    case SidebarItem::expired:
        return m_store.fetchExpired().size();
    case SidebarItem::allCredentials:
        return m_store.countServices(false);
    case SidebarItem::archive:
        // Archived services are deliberately left out: an archive of services alone shows no
        // badge.
        return m_store.fetchArchivedOrganizations().size();
    case SidebarItem::passwordHealth:
        // Known only after a check the user authenticated for; nothing before it.
        return m_state.passwordHealthFindings().value_or(0);
    }
    return 0;
}

Palette::Color SidebarModel::badgeColor(SidebarItem item) {
    switch (item.value()) {
    case SidebarItem::favorites:
        return Palette::Color::yellow;
    case SidebarItem::expiringSoon:
        return Palette::Color::orange;
    case SidebarItem::expired:
        return Palette::Color::red;
    case SidebarItem::passwordHealth:
        return Palette::Color::orange;
    default:
        return Palette::Color::secondary;
    }
}

void SidebarModel::choose(SidebarItem item) {
    m_state.setSelectedSidebarItem(item);
}

void SidebarModel::openOrganization(Organization& organization) {
    m_state.navigateTo(organization);
}

void SidebarModel::newOrganization() {
    m_state.setShowingNewOrganization(true);
}

} // namespace vorlane
