// SPDX-License-Identifier: GPL-3.0-or-later
// Global search, All Credentials and the archive, on a real vault: what each lists, in which
// order, with which texts, and what choosing a row does to the navigation state.

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/AllCredentialsScreen.h"
#include "screens/ArchiveScreen.h"
#include "screens/GlobalSearchScreen.h"
#include "screens/OrganizationRow.h"

#include <algorithm>

namespace vorlane::testing {
namespace {

std::vector<std::string> names(const std::vector<Organization*>& organizations) {
    std::vector<std::string> result;
    for (const Organization* organization : organizations) {
        result.push_back(organization->name);
    }
    return result;
}

class GlobalSearchScreenTest : public ScreenFixture {
protected:
    void SetUp() override {
        Organization& acme = addOrganization("Acme Ltd");
        addService(acme, "Mail relay",
                   [](ServiceRecord& s) { s.setServiceType(ServiceType::mailbox); });
        Organization& other = addOrganization("Borealis");
        other.tags = {"acme-partner"};
        store().noteChanged(other);
        addService(other, "Production VPS", [](ServiceRecord& s) {
            s.setServiceType(ServiceType::vps);
            s.tags = {"acme-prod"};
        });
        addService(other, "Legacy box", [](ServiceRecord& s) {
            s.serviceTypeRaw = "mainframe"; // unknown: reads as customSecret
            s.notes = "left over from the ACME migration";
        });
        addService(other, "Unrelated",
                   [](ServiceRecord& s) { s.setServiceType(ServiceType::vps); });
        Organization& archived = addOrganization("Acme Archive");
        archiveFlag(archived);
    }
};

TEST_F(GlobalSearchScreenTest,
       UpperCaseQueryFindsOrganizationsByNameAndTagAndServicesByOwnerTagAndNotes) {
    m_state.setSearchQuery("ACME");
    GlobalSearchScreen screen(context());
    EXPECT_EQ(names(screen.organizations()), (std::vector<std::string>{"Acme Ltd", "Borealis"}))
        << "by name and by tag; the archived one never";
    EXPECT_EQ(titlesOf(screen.services()),
              (std::vector<std::string>{"Legacy box", "Mail relay", "Production VPS"}));
    EXPECT_EQ(screen.headerTitle(), "Results for \"ACME\"");
    EXPECT_EQ(screen.countText(), "5 results");
    EXPECT_EQ(screen.emptyState(), std::nullopt);
}

TEST_F(GlobalSearchScreenTest, TypeFilterNarrowsServicesOnlyAndComparesTheStoredKind) {
    m_state.setSearchQuery("acme");
    GlobalSearchScreen screen(context());
    screen.setTypeFilter(ServiceType::vps);
    EXPECT_EQ(titlesOf(screen.services()), std::vector<std::string>{"Production VPS"});
    EXPECT_EQ(screen.organizations().size(), 2U) << "organizations are never filtered by type";
    EXPECT_EQ(screen.countText(), "3 results");

    // A kind the program does not know reads as Custom Secret, but the filter compares the stored
    // text, so it matches no filter.
    screen.setTypeFilter(ServiceType::customSecret);
    EXPECT_TRUE(screen.services().empty());
    EXPECT_EQ(screen.emptyState(), std::nullopt) << "organizations still match";

    screen.setTypeFilter(std::nullopt);
    EXPECT_EQ(screen.services().size(), 3U);

    // The filter survives the query changing under it.
    screen.setTypeFilter(ServiceType::mailbox);
    m_state.setSearchQuery("relay");
    screen.rebuild();
    EXPECT_EQ(titlesOf(screen.services()), std::vector<std::string>{"Mail relay"});
    EXPECT_EQ(screen.countText(), "1 results");
}

TEST_F(GlobalSearchScreenTest, NothingMatchingShowsTheEmptyState) {
    m_state.setSearchQuery("zzz-nothing");
    GlobalSearchScreen screen(context());
    ASSERT_TRUE(screen.emptyState());
    EXPECT_TRUE(screen.emptyState()->actionTitle.empty()) << "nothing to add from a search";
    EXPECT_EQ(screen.countText(), "0 results");

    // A lone space is a search too, and contained in "Acme Ltd" and "Mail relay".
    m_state.setSearchQuery(" ");
    screen.rebuild();
    EXPECT_EQ(screen.headerTitle(), "Results for \" \"");
    EXPECT_EQ(screen.emptyState(), std::nullopt);
}

TEST_F(GlobalSearchScreenTest, ChoosingAResultEndsTheSearchAndShowsIt) {
    m_state.setSearchQuery("acme");
    GlobalSearchScreen screen(context());
    const auto vps = std::ranges::find(screen.services(), "Production VPS", &ServiceRecord::title);
    ASSERT_NE(vps, screen.services().end());
    ServiceRecord& service = **vps;
    screen.open(service);
    EXPECT_EQ(m_state.searchQuery(), "");
    EXPECT_FALSE(m_state.isSearching());
    EXPECT_EQ(m_state.selectedService(), &service);
    EXPECT_EQ(m_state.selectedOrganization(), service.organization);
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::organizations);

    // Picking an organization while a service is open: the service stays in front (it is not
    // this screen's to close), the organization is selected behind it.
    m_state.setSearchQuery("acme");
    screen.rebuild();
    Organization& acme = *screen.organizations().front();
    screen.open(acme);
    EXPECT_FALSE(m_state.isSearching());
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
    EXPECT_EQ(m_state.selectedService(), &service);
}

class AllCredentialsScreenTest : public ScreenFixture {};

TEST_F(AllCredentialsScreenTest, FiltersByKindAndStatusAnUnknownStatusCountingAsActive) {
    Organization& owner = addOrganization("Acme Ltd");
    addService(owner, "db", [](ServiceRecord& s) { s.setServiceType(ServiceType::database); });
    addService(owner, "web", [](ServiceRecord& s) { s.setStatus(ServiceStatus::warning); });
    addService(owner, "odd", [](ServiceRecord& s) { s.statusRaw = "paused"; });
    addService(owner, "old", [](ServiceRecord& s) {
        s.isArchived = true;
        s.setStatus(ServiceStatus::archived);
    });
    AllCredentialsScreen screen(context());
    EXPECT_EQ(titlesOf(screen.rows()), (std::vector<std::string>{"db", "odd", "web"}))
        << "archived services are not credentials in use";
    EXPECT_EQ(screen.countText(), "3 items");

    screen.setStatusFilter(ServiceStatus::active);
    EXPECT_EQ(titlesOf(screen.rows()), (std::vector<std::string>{"db", "odd"}));
    screen.setTypeFilter(ServiceType::database);
    EXPECT_EQ(titlesOf(screen.rows()), std::vector<std::string>{"db"});
    EXPECT_EQ(screen.countText(), "1 items");
    screen.setStatusFilter(std::nullopt);
    screen.setTypeFilter(std::nullopt);
    EXPECT_EQ(screen.rows().size(), 3U);

    // Choosing a row opens the service only: the organization stays unselected, so closing the
    // service comes back here.
    screen.open(*screen.rows().front());
    EXPECT_EQ(m_state.selectedService(), screen.rows().front());
    EXPECT_EQ(m_state.selectedOrganization(), nullptr);
}

TEST_F(AllCredentialsScreenTest, FiltersThatMatchNothingShowTheEmptyStateAndKeepTheirValues) {
    Organization& owner = addOrganization("Acme Ltd");
    addService(owner, "db", [](ServiceRecord& s) { s.setServiceType(ServiceType::database); });
    AllCredentialsScreen screen(context());
    EXPECT_EQ(screen.emptyState(), std::nullopt);

    screen.setTypeFilter(ServiceType::apiKey);
    ASSERT_TRUE(screen.emptyState());
    EXPECT_FALSE(screen.emptyState()->actionTitle.empty());
    EXPECT_EQ(screen.typeFilter(), ServiceType::apiKey);

    // A new service of that kind brings the list back with the filter still set.
    addService(owner, "key", [](ServiceRecord& s) { s.setServiceType(ServiceType::apiKey); });
    screen.rebuild();
    EXPECT_EQ(titlesOf(screen.rows()), std::vector<std::string>{"key"});

    screen.addService();
    EXPECT_TRUE(m_state.showingNewService());
}

class ArchiveScreenTest : public ScreenFixture {};

TEST_F(ArchiveScreenTest, AnArchiveOfServicesOnlyListsThemByTitleInNaturalOrder) {
    Organization& owner = addOrganization("Acme Ltd");
    for (const char* title : {"box 10", "Box 2", "live"}) {
        ServiceRecord& service = addService(owner, title);
        if (service.title != "live") {
            m_actions->archive(service);
        }
    }
    ArchiveScreen screen(context());
    EXPECT_TRUE(screen.organizations().empty());
    EXPECT_EQ(titlesOf(screen.services()), (std::vector<std::string>{"Box 2", "box 10"}))
        << "archived services of an organization that is not archived, numbers by value";
    EXPECT_EQ(screen.emptyState(), std::nullopt);
}

TEST_F(ArchiveScreenTest, EmptyArchiveThenAnOrganizationRestoredThroughItsMenu) {
    Organization& owner = addOrganization("Acme Ltd");
    ArchiveScreen screen(context());
    ASSERT_TRUE(screen.emptyState());
    EXPECT_TRUE(screen.emptyState()->actionTitle.empty()) << "nothing to add from the archive";

    ServiceRecord& kept = addService(owner, "web");
    m_actions->archive(addService(owner, "old"));
    archiveFlag(owner);
    screen.rebuild();
    ASSERT_EQ(screen.organizations().size(), 1U);
    EXPECT_EQ(OrganizationRow::of(*screen.organizations().front()).servicesText, "2 services")
        << "the row counts every service, archived ones included";
    EXPECT_EQ(titlesOf(screen.services()), std::vector<std::string>{"old"})
        << "the services of an archived organization are not archived with it";

    const auto menu = screen.organizationMenu(owner);
    const auto restore =
        std::ranges::find(menu, std::optional(OrganizationActions::Action::restore),
                          &OrganizationActions::MenuItem::action);
    ASSERT_NE(restore, menu.end());
    EXPECT_EQ(restore->title, "Restore");
    EXPECT_EQ(std::ranges::count(menu, std::optional(OrganizationActions::Action::archive),
                                 &OrganizationActions::MenuItem::action),
              0);
    screen.perform(OrganizationActions::Action::restore, owner);
    screen.rebuild();
    EXPECT_TRUE(screen.organizations().empty());
    EXPECT_FALSE(store().hasUnsavedChanges()) << "restoring saves";
    EXPECT_FALSE(kept.isArchived);
}

} // namespace
} // namespace vorlane::testing
