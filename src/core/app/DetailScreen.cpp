// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/DetailScreen.h"

#include "app/AppState.h"

namespace vorlane {

DetailScreen routeDetail(const AppState& state) {
    if (state.isSearching()) {
        return DetailScreen::search;
    }
    if (state.selectedService() != nullptr) {
        return DetailScreen::serviceDetail;
    }
    if (state.selectedOrganization() != nullptr) {
        return DetailScreen::organizationDetail;
    }
    switch (state.selectedSidebarItem().value()) {
    case SidebarItem::dashboard:
        return DetailScreen::dashboard;
    case SidebarItem::organizations:
        return DetailScreen::organizationGrid;
    case SidebarItem::favorites:
        return DetailScreen::favoritesGrid;
    case SidebarItem::expiringSoon:
        return DetailScreen::expiringSoon;
    case SidebarItem::expired:
        return DetailScreen::expired;
    case SidebarItem::allCredentials:
        return DetailScreen::allCredentials;
    case SidebarItem::allExpenses:
        return DetailScreen::expenses;
    case SidebarItem::archive:
        return DetailScreen::archive;
    case SidebarItem::passwordHealth:
        return DetailScreen::passwordHealth;
    }
    return DetailScreen::dashboard;
}

} // namespace vorlane
