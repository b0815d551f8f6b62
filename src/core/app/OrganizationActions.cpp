// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/OrganizationActions.h"

#include "app/AppState.h"
#include "model/Organization.h"
#include "store/DataStore.h"

namespace vorlane {

OrganizationActions::OrganizationActions(DataStore& store, AppState& state)
    : m_store(store)
    , m_state(state) {}

std::vector<OrganizationActions::MenuItem>
OrganizationActions::menu(const Organization& organization) {
    std::vector<MenuItem> items;
    items.push_back({Action::open, "Open", "arrow.right.circle"});
    items.push_back({});
    if (organization.isFavorite) {
        items.push_back({Action::toggleFavorite, "Remove from Favorites", "star.slash"});
    } else {
        items.push_back({Action::toggleFavorite, "Add to Favorites", "star"});
    }
    items.push_back({Action::edit, "Edit", "pencil"});
    items.push_back({Action::share, "Share", "square.and.arrow.up"});
    items.push_back({});
    if (organization.isArchived) {
        items.push_back({Action::restore, "Restore", "arrow.uturn.backward"});
    } else {
        items.push_back({Action::archive, "Archive", "archivebox"});
    }
    items.push_back({Action::deleteOrganization, "Delete", "trash", true});
    return items;
}

void OrganizationActions::perform(Action action, Organization& organization) const {
    switch (action) {
    case Action::open:
        open(organization);
        return;
    case Action::toggleFavorite:
        toggleFavorite(organization);
        return;
    case Action::edit:
        edit(organization);
        return;
    case Action::share:
        share(organization);
        return;
    case Action::archive:
        archive(organization);
        return;
    case Action::restore:
        restore(organization);
        return;
    case Action::deleteOrganization:
        deleteOrganization(organization);
        return;
    }
}

void OrganizationActions::open(Organization& organization) const {
    m_state.navigateTo(organization);
}

void OrganizationActions::toggleFavorite(Organization& organization) const {
    organization.isFavorite = !organization.isFavorite;
    m_store.noteChanged(organization);
    m_store.save();
}

void OrganizationActions::edit(Organization& organization) const {
    m_state.setEditingOrganization(&organization);
    m_state.setShowingNewOrganization(true);
}

void OrganizationActions::share(Organization& organization) const {
    m_state.startShare(organization, {});
}

void OrganizationActions::archive(Organization& organization) const {
    setArchived(organization, true);
}

void OrganizationActions::restore(Organization& organization) const {
    setArchived(organization, false);
}

void OrganizationActions::setArchived(Organization& organization, bool archived) const {
    organization.isArchived = archived;
    m_store.noteChanged(organization);
    m_store.save();
}

void OrganizationActions::deleteOrganization(Organization& organization) const {
    m_state.forget(organization);
    m_store.deleteOrganization(organization);
}

} // namespace vorlane
