// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "model/SidebarItem.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class AppState;
class DataStore;
class UserCalendar;
struct Organization;

// The sidebar: four sections of rows ("Navigate", "Smart Views", "Library", "Organizations"),
// each destination with its live count, and a quick list of the first organizations by name.
// `rows()` is a snapshot taken by the last `refresh()` (and the constructor); call `refresh()`
// whenever the store changes. Organization rows point into the store and are valid until the next
// change of the store. Main thread; store, calendar and state must outlive the model.
class SidebarModel {
public:
    // The quick list is deliberately alphabetical and short: it is for reaching the first few
    // clients in one click, not a second organization list.
    static constexpr std::size_t quickListSize = 8;
    // The "Expiring Soon" count looks this far ahead, whatever the warning-days preference says.
    static constexpr int expiringSoonDays = 30;

    static constexpr std::string_view footerTitle = "New Organization";
    static constexpr std::string_view footerIcon = "plus.circle";
    static constexpr std::string_view footerToolTip = "Add Organization";

    enum class RowKind { sectionHeader, destination, organization };

    struct Row {
        RowKind kind = RowKind::sectionHeader;
        std::string title; // section title, destination name or organization name
        std::string icon;  // destination rows only
        SidebarItem item = SidebarItem::dashboard; // destination rows only
        std::size_t count = 0;                     // destination rows: the badge's number
        bool showsBadge = false;                   // destination rows with a count of at least 1
        Palette::Color badgeColor = Palette::Color::secondary;
        Organization* organization = nullptr; // organization rows only
        bool showsExpiringDot = false; // organization rows with a service expiring within a week
        std::string accessibleText;    // what a screen reader says for the row
    };

    SidebarModel(const DataStore& store, const UserCalendar& calendar, AppState& state);

    void refresh();
    const std::vector<Row>& rows() const { return m_rows; }

    // The number a destination's badge shows now, read from the store (0 means no badge).
    std::size_t badgeCount(SidebarItem item) const;
    static Palette::Color badgeColor(SidebarItem item);

    // -- Actions
    // A destination row only moves the sidebar's selection: an organization or service that is
    // open stays in front until it is closed.
    void choose(SidebarItem item);
    void openOrganization(Organization& organization);
    void newOrganization();

private:
    const DataStore& m_store;
    const UserCalendar& m_calendar;
    AppState& m_state;
    std::vector<Row> m_rows;
};

} // namespace vorlane
