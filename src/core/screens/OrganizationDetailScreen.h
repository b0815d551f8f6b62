// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/OrganizationActions.h"
#include "model/ExpirationState.h"
#include "model/OrgDetailTab.h"
#include "model/Palette.h"
#include "screens/EmptyState.h"
#include "screens/RenewalScreen.h"
#include "screens/StatCard.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

struct AppContext;
class AppState;
class DataStore;
struct Organization;
class ServiceActions;
struct ServiceRecord;
struct ShareRecord;
class UserCalendar;

// The screen of one organization, shown while it is the selected organization: a header with its
// identity, contact line, tags and actions, and one tab per OrgDetailTab (the one shown is the
// navigation state's `selectedOrgTab`). Each tab's content is built afresh by its function, from
// the records as they are now; the widget calls them again when the store changes.
//
// Main thread. The context must outlive the screen; the organization must stay in the store
// while the screen exists (the window rebuilds the screen when the selection changes, and whoever
// deletes an organization makes the navigation state forget it first). Record pointers in what
// the functions return are valid until the store next changes.
class OrganizationDetailScreen {
public:
    // One piece of the contact line. `link` is what opening it opens ("mailto:..." for the
    // e-mail, the website with "https://" when typed without a scheme); empty for plain text.
    struct ContactItem {
        std::string icon;
        std::string text;
        std::string link;
    };

    struct Header {
        std::string name;
        std::string projectName;
        std::vector<ContactItem> contact;
        std::vector<std::string> tags;
        bool isFavorite;
        std::string favoriteTitle; // "Add to Favorites" / "Remove from Favorites"
        std::string archiveTitle;  // "Archive" / "Restore"
        std::string archiveIcon;
    };

    struct Tab {
        OrgDetailTab tab;
        std::string title; // the label, with the count of services on service tabs: "Servers (3)"
        std::string icon;
    };

    // A titled group of service rows.
    struct Section {
        std::string title;
        std::string trailingText; // at the header's right, when not empty
        std::vector<ServiceRecord*> services;
    };

    struct Overview {
        std::vector<StatCard> stats;
        Section expiringSoon;    // non-archived, expiring within 30 days, soonest first
        Section recentlyUpdated; // the five non-archived services updated last
    };

    // A service tab: one section per kind present, in the tab's kind order.
    struct ServiceTab {
        std::vector<Section> sections;
        std::optional<EmptyState> emptyState;
    };

    struct ExpenseRow {
        ServiceRecord* service;
        std::string title;
        std::string icon;
        Palette::Color tint;
        std::string cycle;       // the billing cycle's label
        std::string monthlyCost; // effective monthly cost, formatted
    };

    struct Expenses {
        std::vector<StatCard> totals; // "Monthly Total", "Yearly Total"
        // "Paid This Year", "Paid Last Year": the payments recorded, as the cost report sums them
        std::vector<StatCard> paid;
        std::vector<ExpenseRow> rows; // paid services, costliest first
        std::optional<EmptyState> emptyState;
    };

    struct Renewals {
        std::vector<RenewalScreen::Band> bands; // as the renewal screen bands them
        std::optional<EmptyState> emptyState;
    };

    struct ShareRow {
        ShareRecord* share;
        std::string date;         // when it was shared
        std::string recipient;    // or "Not specified"
        std::string method;       // the method's display name
        std::string servicesText; // "1 service", "4 services"
        std::string secretsText;  // "Secrets included" / "No secrets"
        std::string withheldText; // "Withheld: notes, username" / "Nothing withheld"
        std::string expiryText;   // "Expires Mar 5, 2026", "Expired ...", "No expiry"
        bool isRevoked;           // shows "Revoked" instead of the "Mark Revoked" action
        std::string accessibleText;
    };

    struct Sharing {
        std::vector<ShareRow> rows; // newest first
        std::optional<EmptyState> emptyState;
    };

    OrganizationDetailScreen(AppContext& context, Organization& organization);

    Organization& organization() const { return m_organization; }

    Header header() const;
    std::vector<Tab> tabs() const;
    OrgDetailTab selectedTab() const;
    void selectTab(OrgDetailTab tab);

    Overview overview() const;
    // Only for a tab with service kinds.
    ServiceTab serviceTab(OrgDetailTab tab) const;
    Expenses expenses() const;
    Renewals renewals() const;
    const std::string& notes() const;
    Sharing sharing() const;

    // -- Actions
    // "Back to Organizations": the grid again.
    void back();
    void toggleFavorite();
    void edit();
    void share();
    // Archive, or restore an archived organization.
    void archiveOrRestore();
    // The service form, preselected on this organization.
    void addService();
    // Smart paste, saving into this organization.
    void smartPaste();
    void markRenewed(ServiceRecord& service);
    // Notes are saved as they are typed: every change is noted and the store's autosave writes it.
    void setNotes(const std::string& notes);
    // Records that the recipient's access was withdrawn, and saves.
    void markRevoked(ShareRecord& share);

private:
    // The organization's non-archived services in the store's title order.
    std::vector<ServiceRecord*> servicesByTitle() const;

    DataStore& m_store;
    AppState& m_state;
    const UserCalendar& m_calendar;
    const ServiceActions& m_serviceActions;
    OrganizationActions m_actions;
    Organization& m_organization;
};

} // namespace vorlane
