// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceType.h"
#include "screens/EmptyState.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct Organization;
struct ServiceRecord;

// The search results that replace the detail pane while the search field holds text: matching
// organizations (never narrowed by the type filter) and matching services (narrowed by it), the
// header and count, and what picking a result does. `rebuild` re-reads the query and the store;
// the lists point into the store and are valid until its next change. Main thread; the context
// must outlive the screen.
class GlobalSearchScreen {
public:
    static constexpr std::string_view icon = "magnifyingglass";
    static constexpr std::string_view typeFilterTitle = "Type Filter";
    static constexpr std::string_view allTypesTitle = "All Types";
    static constexpr std::string_view organizationsTitle = "Organizations";
    static constexpr std::string_view servicesTitle = "Services & Credentials";

    explicit GlobalSearchScreen(AppContext& context);

    void rebuild();

    // The query the lists were built for.
    const std::string& query() const { return m_query; }
    // "Results for \"<query>\""
    std::string headerTitle() const;
    // "<organizations + services> results"
    std::string countText() const;

    std::optional<ServiceType> typeFilter() const { return m_typeFilter; }
    void setTypeFilter(std::optional<ServiceType> type);

    const std::vector<Organization*>& organizations() const { return m_organizations; }
    const std::vector<ServiceRecord*>& services() const { return m_services; }

    // "No results found" when neither list has anything.
    std::optional<EmptyState> emptyState() const;

    // Empties the search field (which ends the search), then shows the result.
    void open(Organization& organization);
    void open(ServiceRecord& service);

private:
    void filterServices();

    AppContext& m_context;
    std::string m_query;
    std::optional<ServiceType> m_typeFilter;
    std::vector<Organization*> m_organizations;
    std::vector<ServiceRecord*> m_matchingServices; // before the type filter
    std::vector<ServiceRecord*> m_services;
};

} // namespace vorlane
