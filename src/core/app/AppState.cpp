// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppState.h"

#include "app/Clipboard.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace vorlane {

AppState::AppState(Clipboard& clipboard, Timers& timers)
    : m_clipboard(clipboard)
    , m_timers(timers) {}

AppState::~AppState() {
    // The pending clear must not reach back into a state that is gone.
    m_timers.cancel(m_clipboardClearTimer);
}

template <typename T> void AppState::assign(T& field, T value) {
    if (field == value) {
        return;
    }
    field = std::move(value);
    changed.emit();
}

void AppState::setSelectedSidebarItem(SidebarItem item) {
    assign(m_selectedSidebarItem, item);
}
void AppState::setSelectedOrganization(Organization* organization) {
    assign(m_selectedOrganization, organization);
}
void AppState::setSelectedService(ServiceRecord* service) {
    assign(m_selectedService, service);
}
void AppState::setSelectedOrgTab(OrgDetailTab tab) {
    assign(m_selectedOrgTab, tab);
}
void AppState::setPasswordHealthFindings(std::optional<std::size_t> findings) {
    assign(m_passwordHealthFindings, findings);
}

void AppState::setSearchQuery(std::string query) {
    const bool searching = !query.empty();
    if (query == m_searchQuery && searching == m_isSearching) {
        return;
    }
    m_searchQuery = std::move(query);
    m_isSearching = searching;
    changed.emit();
}

void AppState::setShowingNewOrganization(bool showing) {
    assign(m_showingNewOrganization, showing);
}
void AppState::setShowingNewService(bool showing) {
    assign(m_showingNewService, showing);
}
void AppState::setShowingSmartPaste(bool showing) {
    assign(m_showingSmartPaste, showing);
}
void AppState::setShowingShareFlow(bool showing) {
    assign(m_showingShareFlow, showing);
}
void AppState::setShowingSettings(bool showing) {
    assign(m_showingSettings, showing);
}
void AppState::setEditingService(ServiceRecord* service) {
    assign(m_editingService, service);
}
void AppState::setEditingOrganization(Organization* organization) {
    assign(m_editingOrganization, organization);
}
void AppState::setNewServiceOrganization(Organization* organization) {
    assign(m_newServiceOrganization, organization);
}

void AppState::navigateTo(Organization& organization) {
    setSelectedSidebarItem(SidebarItem::organizations);
    setSelectedOrganization(&organization);
    setSelectedOrgTab(OrgDetailTab::overview);
}

void AppState::navigateTo(ServiceRecord& service) {
    if (service.organization != nullptr) {
        setSelectedOrganization(service.organization);
        setSelectedSidebarItem(SidebarItem::organizations);
    }
    setSelectedService(&service);
}

void AppState::startShare(Organization& organization, std::vector<ServiceRecord*> services) {
    assign(m_shareOrganization, &organization);
    assign(m_shareServices, services.empty() ? organization.services : std::move(services));
    setShowingShareFlow(true);
}

void AppState::startShare(ServiceRecord& service) {
    assign(m_shareOrganization, service.organization);
    assign(m_shareServices, std::vector<ServiceRecord*>{&service});
    setShowingShareFlow(true);
}

void AppState::copyToClipboard(const std::string& text, double clearAfterSeconds) {
    m_clipboard.clear();
    m_clipboard.setText(text);
    assign(m_recentlyCopied, std::optional<std::string>(text));
    m_timers.cancel(std::exchange(m_clipboardClearTimer, 0));
    // Zero and negative delays (and NaN) arm nothing: the text stays until something replaces it.
    if (!(clearAfterSeconds > 0.0)) {
        return;
    }
    const auto delay = std::chrono::milliseconds(std::llround(clearAfterSeconds * 1000.0));
    m_clipboardClearTimer = m_timers.startOneShot(delay, [this] {
        m_clipboardClearTimer = 0;
        clearIfStillOurs();
    });
}

void AppState::clearIfStillOurs() {
    // A text that the user (or another program) has put on the clipboard since is theirs.
    if (m_clipboard.text() == m_recentlyCopied) {
        m_clipboard.clear();
    }
    assign(m_recentlyCopied, std::optional<std::string>());
}

void AppState::copyExportKey(const std::string& key) {
    m_clipboard.clear();
    m_clipboard.setText(key);
    m_exportKey = key;
}

bool AppState::exportKeyOnlyOnClipboard() const {
    return m_exportKey && m_clipboard.text() == m_exportKey;
}

void AppState::clearClipboardBeforeQuit() {
    if (m_clipboardClearTimer != 0) {
        m_timers.cancel(std::exchange(m_clipboardClearTimer, 0));
        clearIfStillOurs();
    }
}

void AppState::forget(const ServiceRecord& service) {
    auto same = [&service](ServiceRecord* candidate) {
        return candidate == &service;
    };
    if (same(m_selectedService)) {
        setSelectedService(nullptr);
    }
    if (same(m_editingService)) {
        setEditingService(nullptr);
    }
    if (std::ranges::any_of(m_shareServices, same)) {
        std::vector<ServiceRecord*> rest = m_shareServices;
        std::erase_if(rest, same);
        assign(m_shareServices, std::move(rest));
    }
}

void AppState::forget(const Organization& organization) {
    for (const ServiceRecord* service : organization.services) {
        forget(*service);
    }
    auto clear = [this, &organization](Organization*& field) {
        if (field == &organization) {
            assign(field, static_cast<Organization*>(nullptr));
        }
    };
    clear(m_selectedOrganization);
    clear(m_editingOrganization);
    clear(m_newServiceOrganization);
    clear(m_shareOrganization);
}

void AppState::showDashboard() {
    setSelectedSidebarItem(SidebarItem::dashboard);
    setSelectedOrganization(nullptr);
}

void AppState::showOrganizations() {
    setSelectedSidebarItem(SidebarItem::organizations);
    setSelectedOrganization(nullptr);
}

void AppState::showExpiringSoon() {
    // Deliberately leaves an open organization in front: the detail routing still shows it.
    setSelectedSidebarItem(SidebarItem::expiringSoon);
}

} // namespace vorlane
