// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/GlobalSearchScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"

#include <algorithm>

namespace vorlane {

GlobalSearchScreen::GlobalSearchScreen(AppContext& context)
    : m_context(context) {
    rebuild();
}

void GlobalSearchScreen::rebuild() {
    m_query = m_context.state.searchQuery();
    m_organizations = m_context.store.searchOrganizations(m_query);
    m_matchingServices = m_context.store.search(m_query);
    filterServices();
}

void GlobalSearchScreen::setTypeFilter(std::optional<ServiceType> type) {
    m_typeFilter = type;
    filterServices();
}

void GlobalSearchScreen::filterServices() {
    if (!m_typeFilter) {
        m_services = m_matchingServices;
        return;
    }
    // By the stored raw string: a service of an unknown kind matches no filter.
    const std::string_view raw = m_typeFilter->rawValue();
    m_services.clear();
    std::ranges::copy_if(m_matchingServices, std::back_inserter(m_services),
                         [raw](const ServiceRecord* s) { return s->serviceTypeRaw == raw; });
}

std::string GlobalSearchScreen::headerTitle() const {
    return "Results for \"" + m_query + "\"";
}

std::string GlobalSearchScreen::countText() const {
    return std::to_string(m_organizations.size() + m_services.size()) + " results";
}

std::optional<EmptyState> GlobalSearchScreen::emptyState() const {
    if (!m_organizations.empty() || !m_services.empty()) {
        return std::nullopt;
    }
    return EmptyState{icon, "No results found", "Try adjusting your search terms or filters.", {}};
}

void GlobalSearchScreen::open(Organization& organization) {
    m_context.state.setSearchQuery({});
    m_context.state.navigateTo(organization);
}

void GlobalSearchScreen::open(ServiceRecord& service) {
    m_context.state.setSearchQuery({});
    m_context.state.navigateTo(service);
}

} // namespace vorlane
