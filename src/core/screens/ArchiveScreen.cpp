// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ArchiveScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"

#include <algorithm>

namespace vorlane {

ArchiveScreen::ArchiveScreen(AppContext& context)
    : m_context(context)
    , m_organizationActions(context.store, context.state) {
    rebuild();
}

void ArchiveScreen::rebuild() {
    m_organizations = m_context.store.fetchArchivedOrganizations();
    // Every service by title, archived or not, then only the archived ones: the archive lists an
    // archived service even when its organization is not archived.
    m_services = m_context.store.fetchAllServices(true);
    std::erase_if(m_services, [](const ServiceRecord* s) { return !s->isArchived; });
}

std::optional<EmptyState> ArchiveScreen::emptyState() const {
    if (!m_organizations.empty() || !m_services.empty()) {
        return std::nullopt;
    }
    return EmptyState{"archivebox",
                      "Archive is Empty",
                      "Archived organizations and services will appear here.",
                      {}};
}

std::vector<OrganizationActions::MenuItem>
ArchiveScreen::organizationMenu(const Organization& organization) const {
    return OrganizationActions::menu(organization);
}

void ArchiveScreen::perform(OrganizationActions::Action action, Organization& organization) {
    m_organizationActions.perform(action, organization);
}

void ArchiveScreen::open(ServiceRecord& service) {
    m_context.state.setSelectedService(&service);
}

} // namespace vorlane
