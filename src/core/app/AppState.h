// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/OrgDetailTab.h"
#include "model/SidebarItem.h"
#include "util/Signal.h"
#include "util/Timers.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class Clipboard;
struct Organization;
struct ServiceRecord;

// What the user is looking at and which sheet is open: the one long-lived navigation state that
// every screen reads and writes. It holds no vault data: the records it points to belong to the
// store, and whoever deletes a record calls `forget` first so that no pointer here dangles.
//
// `changed` is emitted after every setter that really changed its field (setting a field to the
// value it holds emits nothing). Main thread only; the clipboard and timers must outlive it.
class AppState {
public:
    static constexpr double clipboardClearDelay = 30.0; // seconds, what every copy passes

    AppState(Clipboard& clipboard, Timers& timers);
    ~AppState();
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    Signal<> changed;

    SidebarItem selectedSidebarItem() const { return m_selectedSidebarItem; }
    void setSelectedSidebarItem(SidebarItem item);
    Organization* selectedOrganization() const { return m_selectedOrganization; }
    void setSelectedOrganization(Organization* organization);
    ServiceRecord* selectedService() const { return m_selectedService; }
    void setSelectedService(ServiceRecord* service);
    OrgDetailTab selectedOrgTab() const { return m_selectedOrgTab; }
    void setSelectedOrgTab(OrgDetailTab tab);
    // The number of findings of the last password check, for the sidebar's badge; nothing before
    // a check or after the vault is locked. Only a count: the report itself stays with its view.
    std::optional<std::size_t> passwordHealthFindings() const { return m_passwordHealthFindings; }
    void setPasswordHealthFindings(std::optional<std::size_t> findings);

    const std::string& searchQuery() const { return m_searchQuery; }
    // Also sets `isSearching`: true exactly when the query is not empty (a lone space counts).
    void setSearchQuery(std::string query);
    bool isSearching() const { return m_isSearching; }

    bool showingNewOrganization() const { return m_showingNewOrganization; }
    void setShowingNewOrganization(bool showing);
    bool showingNewService() const { return m_showingNewService; }
    void setShowingNewService(bool showing);
    bool showingSmartPaste() const { return m_showingSmartPaste; }
    void setShowingSmartPaste(bool showing);
    bool showingShareFlow() const { return m_showingShareFlow; }
    void setShowingShareFlow(bool showing);
    bool showingSettings() const { return m_showingSettings; }
    void setShowingSettings(bool showing);

    ServiceRecord* editingService() const { return m_editingService; }
    void setEditingService(ServiceRecord* service);
    Organization* editingOrganization() const { return m_editingOrganization; }
    void setEditingOrganization(Organization* organization);
    Organization* newServiceOrganization() const { return m_newServiceOrganization; }
    void setNewServiceOrganization(Organization* organization);
    Organization* shareOrganization() const { return m_shareOrganization; }
    const std::vector<ServiceRecord*>& shareServices() const { return m_shareServices; }

    // The text this program last put on the clipboard and has not cleared yet.
    const std::optional<std::string>& recentlyCopied() const { return m_recentlyCopied; }

    // Organizations destination, this organization, its overview tab. Leaves `selectedService`
    // alone: a service that is open stays in front.
    void navigateTo(Organization& organization);
    // The service, and its organization under the organizations destination when it has one.
    // Keeps `selectedOrgTab`, so that leaving the service returns to the tab it came from.
    void navigateTo(ServiceRecord& service);

    // Opens the share sheet on `services`, or on every service of the organization (archived
    // ones included) when the list is empty.
    void startShare(Organization& organization, std::vector<ServiceRecord*> services);
    // Opens the share sheet on one service, for its organization (which may be none: the sheet
    // is then empty).
    void startShare(ServiceRecord& service);

    // Puts `text` on the clipboard and, when `clearAfterSeconds` is above zero, clears it that
    // much later, but only if the clipboard still holds this text. Every copy cancels the clear
    // that an earlier one armed.
    void copyToClipboard(const std::string& text, double clearAfterSeconds);

    // Puts a share's generated export key on the clipboard, with no clear: the clipboard is the
    // only way the person receives it, and they may not have pasted it yet. An earlier copy's
    // pending clear then finds the clipboard no longer ours and leaves it.
    void copyExportKey(const std::string& key);

    // Quitting. While the generated export key is still on the clipboard, the program asks
    // `exportKeyQuitQuestion` before it quits (the person would lose the key with it).
    static constexpr std::string_view exportKeyQuitQuestion =
        "The export key is still only on the clipboard. Quit anyway?";
    bool exportKeyOnlyOnClipboard() const;
    // Runs a pending clear at once, when the clipboard still holds our copy: a password copied
    // just before quitting must not outlive the program that was to clear it. The export key
    // stays.
    void clearClipboardBeforeQuit();

    // Drops every reference to a record that is about to be deleted (for an organization, to its
    // services too), so that nothing here points at freed memory.
    void forget(const Organization& organization);
    void forget(const ServiceRecord& service);

    // The menu and toolbar commands that do more than raise one flag.
    void showDashboard();     // "Dashboard": the destination, and closes an open organization
    void showOrganizations(); // "Organizations": likewise
    void showExpiringSoon();  // "Expiring Soon": the destination only

private:
    template <typename T> void assign(T& field, T value);
    void clearIfStillOurs();

    Clipboard& m_clipboard;
    Timers& m_timers;

    SidebarItem m_selectedSidebarItem = SidebarItem::dashboard;
    Organization* m_selectedOrganization = nullptr;
    ServiceRecord* m_selectedService = nullptr;
    OrgDetailTab m_selectedOrgTab = OrgDetailTab::overview;
    std::optional<std::size_t> m_passwordHealthFindings;
    std::string m_searchQuery;
    bool m_isSearching = false;
    bool m_showingNewOrganization = false;
    bool m_showingNewService = false;
    bool m_showingSmartPaste = false;
    bool m_showingShareFlow = false;
    bool m_showingSettings = false;
    ServiceRecord* m_editingService = nullptr;
    Organization* m_editingOrganization = nullptr;
    Organization* m_newServiceOrganization = nullptr;
    Organization* m_shareOrganization = nullptr;
    std::vector<ServiceRecord*> m_shareServices;
    std::optional<std::string> m_recentlyCopied;
    std::optional<std::string> m_exportKey;    // the last one put on the clipboard
    Timers::TimerId m_clipboardClearTimer = 0; // 0 while no clear is pending
};

} // namespace vorlane
