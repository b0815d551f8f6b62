// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/AllCredentialsScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"

#include <algorithm>

namespace vorlane {

AllCredentialsScreen::AllCredentialsScreen(AppContext& context)
    : m_context(context) {
    rebuild();
}

void AllCredentialsScreen::rebuild() {
    m_all = m_context.store.fetchAllServices(false);
    filter();
}

void AllCredentialsScreen::setTypeFilter(std::optional<ServiceType> type) {
    m_typeFilter = type;
    filter();
}

void AllCredentialsScreen::setStatusFilter(std::optional<ServiceStatus> status) {
    m_statusFilter = status;
    filter();
}

void AllCredentialsScreen::filter() {
    if (!m_typeFilter && !m_statusFilter) {
        m_rows = m_all;
        return;
    }
    m_rows.clear();
    // The kind by its stored raw string (an unknown kind matches no filter); the status as read,
    // so an unknown status counts as active.
    std::ranges::copy_if(m_all, std::back_inserter(m_rows), [this](const ServiceRecord* s) {
        return (!m_typeFilter || s->serviceTypeRaw == m_typeFilter->rawValue()) &&
               (!m_statusFilter || s->status() == *m_statusFilter);
    });
}

std::string AllCredentialsScreen::countText() const {
    return std::to_string(m_rows.size()) + " items";
}

std::optional<EmptyState> AllCredentialsScreen::emptyState() const {
    if (!m_rows.empty()) {
        return std::nullopt;
    }
    return EmptyState{"key", "No Credentials Yet",
                      "Add your first service or credential to get started.", "Add Service"};
}

void AllCredentialsScreen::open(ServiceRecord& service) {
    m_context.state.setSelectedService(&service);
}

void AllCredentialsScreen::addService() {
    m_context.state.setShowingNewService(true);
}

} // namespace vorlane
