// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/OrganizationActions.h"
#include "screens/EmptyState.h"

#include <optional>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct Organization;
struct ServiceRecord;

// The archive: archived organizations by name, then archived services by title. Its rows have no
// action of their own; restoring and deleting go through their menus (the organization menu that
// the grid's cards show, the service row menu). `rebuild` re-reads the store; the lists point into
// it and are valid until its next change. Main thread; the context must outlive the screen.
class ArchiveScreen {
public:
    static constexpr std::string_view title = "Archive";
    static constexpr std::string_view organizationsTitle = "Archived Organizations";
    static constexpr std::string_view servicesTitle = "Archived Services";

    explicit ArchiveScreen(AppContext& context);

    void rebuild();

    const std::vector<Organization*>& organizations() const { return m_organizations; }
    const std::vector<ServiceRecord*>& services() const { return m_services; }
    // "Archive is Empty" when both lists are empty.
    std::optional<EmptyState> emptyState() const;

    // The menu of an archived organization's row ("Restore" in place of "Archive"), and its
    // actions; after `deleteOrganization` the organization is gone.
    std::vector<OrganizationActions::MenuItem>
    organizationMenu(const Organization& organization) const;
    void perform(OrganizationActions::Action action, Organization& organization);
    // "Open" in a service row's menu: the service's detail.
    void open(ServiceRecord& service);

private:
    AppContext& m_context;
    OrganizationActions m_organizationActions;
    std::vector<Organization*> m_organizations;
    std::vector<ServiceRecord*> m_services;
};

} // namespace vorlane
