// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SidebarItem.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, SidebarItem::caseCount> displayNames{
    "Dashboard",       "Organizations", "Favorites", "Expiring Soon",   "Expired",
    "All Credentials", "Expenses",      "Archive",   "Password Health",
};

constexpr std::array<std::string_view, SidebarItem::caseCount> icons{
    "square.grid.2x2",   "building.2", "star",   "exclamationmark.triangle", "xmark.circle", "key",
    "dollarsign.circle", "archivebox", "shield",
};

} // namespace

std::string_view SidebarItem::displayName() const {
    return displayNames[index()];
}

std::string_view SidebarItem::icon() const {
    return icons[index()];
}

} // namespace vorlane
