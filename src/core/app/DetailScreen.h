// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace vorlane {

class AppState;

// What the main window's detail pane shows. The grid and the renewal screen each appear twice,
// with the filter their destination gives them.
enum class DetailScreen {
    search,
    serviceDetail,
    organizationDetail,
    dashboard,
    organizationGrid,
    favoritesGrid,
    expiringSoon,
    expired,
    allCredentials,
    expenses,
    archive,
    passwordHealth,
};

// The detail pane's screen for the current state, first match wins: search results while the
// search field holds text, then the selected service, then the selected organization, then the
// sidebar destination.
DetailScreen routeDetail(const AppState& state);

} // namespace vorlane
