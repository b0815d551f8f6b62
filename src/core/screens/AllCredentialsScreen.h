// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceStatus.h"
#include "model/ServiceType.h"
#include "screens/EmptyState.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct ServiceRecord;

// "All Credentials": every service that is not archived, in the store's order, narrowed by an
// optional type and an optional status. When nothing is left (no services, or filters that
// exclude them all) the whole screen is the empty state; the filters keep their values. `rebuild`
// re-reads the store; the rows point into it and are valid until its next change. Main thread;
// the context must outlive the screen.
class AllCredentialsScreen {
public:
    static constexpr std::string_view title = "All Credentials";
    static constexpr std::string_view typeFilterTitle = "Type";
    static constexpr std::string_view allTypesTitle = "All Types";
    static constexpr std::string_view statusFilterTitle = "Status";
    static constexpr std::string_view allStatusesTitle = "All Statuses";

    explicit AllCredentialsScreen(AppContext& context);

    void rebuild();

    std::optional<ServiceType> typeFilter() const { return m_typeFilter; }
    void setTypeFilter(std::optional<ServiceType> type);
    std::optional<ServiceStatus> statusFilter() const { return m_statusFilter; }
    void setStatusFilter(std::optional<ServiceStatus> status);

    const std::vector<ServiceRecord*>& rows() const { return m_rows; }
    // "<count> items"
    std::string countText() const;
    // "No Credentials Yet" with "Add Service" whenever `rows` is empty.
    std::optional<EmptyState> emptyState() const;

    // A row chosen: the service's detail (its organization is left as it was).
    void open(ServiceRecord& service);
    // The empty state's action: the new-service sheet.
    void addService();

private:
    void filter();

    AppContext& m_context;
    std::optional<ServiceType> m_typeFilter;
    std::optional<ServiceStatus> m_statusFilter;
    std::vector<ServiceRecord*> m_all;
    std::vector<ServiceRecord*> m_rows;
};

} // namespace vorlane
