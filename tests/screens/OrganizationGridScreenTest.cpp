// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationGridScreen.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Action = OrganizationActions::Action;
using SortOrder = OrganizationGridScreen::SortOrder;

class OrganizationGridScreenTest : public ScreenFixture {
protected:
    OrganizationGridScreen grid(OrganizationFilter filter = OrganizationFilter::all) {
        return OrganizationGridScreen(store(), m_state, m_calendar, filter);
    }

    static std::vector<std::string> names(const OrganizationGridScreen& screen) {
        std::vector<std::string> result;
        for (const auto& card : screen.cards()) {
            result.push_back(card.name);
        }
        return result;
    }

    void addPaid(Organization& owner, const std::string& title, std::int64_t monthly) {
        addService(owner, title, [monthly](ServiceRecord& s) { s.monthlyCost = Decimal(monthly); });
    }

    // The menu entry titled `title`, or a failure when the card's menu lacks it.
    static std::optional<Action> menuAction(const OrganizationGridScreen& screen, std::size_t row,
                                            const std::string& title) {
        for (const auto& item : screen.menu(row)) {
            if (item.title == title) {
                return item.action;
            }
        }
        ADD_FAILURE() << "no menu item " << title;
        return std::nullopt;
    }
};

TEST_F(OrganizationGridScreenTest, EachOrderBreaksTiesByName) {
    Organization& delta = addOrganization("Delta");
    Organization& alpha = addOrganization("alpha");
    Organization& charlie = addOrganization("Charlie");
    Organization& bravo = addOrganization("Bravo");
    addPaid(delta, "d", 50);
    addPaid(charlie, "c", 20);
    addPaid(alpha, "a", 20);
    addPaid(bravo, "b1", 5);
    addPaid(bravo, "b2", 5);
    // An archived service counts for "services" but its cost does not.
    addService(bravo, "b3", [](ServiceRecord& s) {
        s.isArchived = true;
        s.monthlyCost = Decimal(100);
    });
    charlie.updatedAt = m_clock.now() + 1h;
    delta.updatedAt = m_clock.now() + 1h;

    auto screen = grid();
    EXPECT_EQ(names(screen), (std::vector<std::string>{"alpha", "Bravo", "Charlie", "Delta"}));
    screen.setSortOrder(SortOrder::cost);
    EXPECT_EQ(names(screen), (std::vector<std::string>{"Delta", "alpha", "Charlie", "Bravo"}));
    screen.setSortOrder(SortOrder::services);
    EXPECT_EQ(names(screen), (std::vector<std::string>{"Bravo", "alpha", "Charlie", "Delta"}));
    screen.setSortOrder(SortOrder::recent);
    EXPECT_EQ(names(screen), (std::vector<std::string>{"Charlie", "Delta", "alpha", "Bravo"}));
}

// Names that differ only in case are still told apart by the name order, so the grid shows them
// in one order whatever order they were added in, and the other orders' ties follow it; the
// favourites grid, which keeps the store's own order, too.
TEST_F(OrganizationGridScreenTest, NamesDifferingOnlyInCaseHaveOneOrderWhateverTheInsertion) {
    for (const char* name : {"Bolt", "BOLT", "bolt", "zinc", "Zinc", "ZINC"}) {
        Organization& organization = addOrganization(name);
        organization.isFavorite = true;
        store().noteChanged(organization);
    }
    const std::vector<std::string> expected{"bolt", "Bolt", "BOLT", "zinc", "Zinc", "ZINC"};
    auto screen = grid();
    EXPECT_EQ(names(screen), expected);
    screen.setSortOrder(SortOrder::cost);
    EXPECT_EQ(names(screen), expected) << "equal costs keep the name order";
    EXPECT_EQ(names(grid(OrganizationFilter::favorites)), expected);

    // Added the other way round, each name ends up where it was.
    for (Organization* organization : store().fetchOrganizations()) {
        store().deleteOrganization(*organization);
    }
    for (auto name = expected.rbegin(); name != expected.rend(); ++name) {
        addOrganization(*name);
    }
    EXPECT_EQ(names(grid()), expected);
}

TEST_F(OrganizationGridScreenTest, CaptionCountsTitlesAndEmptyStatesFollowTheFilter) {
    auto screen = grid();
    EXPECT_EQ(screen.title(), "Organizations");
    ASSERT_TRUE(screen.emptyState());
    EXPECT_EQ(screen.emptyState()->title, "No Organizations Yet");

    Organization& acme = addOrganization("Acme");
    screen.rebuild();
    EXPECT_EQ(screen.countText(), "1 organization");
    EXPECT_FALSE(screen.emptyState());
    Organization& umbrella = addOrganization("Umbrella");
    umbrella.isActive = false;
    screen.rebuild();
    EXPECT_EQ(screen.countText(), "2 organizations");
    EXPECT_EQ(names(grid(OrganizationFilter::active)), std::vector<std::string>{"Acme"});
    EXPECT_EQ(names(grid(OrganizationFilter::inactive)), std::vector<std::string>{"Umbrella"});
    EXPECT_EQ(grid(OrganizationFilter::inactive).title(), "Inactive Clients");

    auto favorites = grid(OrganizationFilter::favorites);
    EXPECT_EQ(favorites.title(), "Favorites");
    ASSERT_TRUE(favorites.emptyState());
    EXPECT_EQ(favorites.emptyState()->title, "No Favorites");
    favorites.performEmptyStateAction();
    EXPECT_TRUE(m_state.showingNewOrganization());

    screen.rebuild();
    EXPECT_EQ(menuAction(screen, 0, "Add to Favorites"), Action::toggleFavorite);
    screen.perform(Action::toggleFavorite, 0);
    EXPECT_TRUE(acme.isFavorite);
    EXPECT_FALSE(store().hasUnsavedChanges()) << "a favourite toggle is saved at once";
    favorites.rebuild();
    EXPECT_EQ(names(favorites), std::vector<std::string>{"Acme"});
    EXPECT_EQ(menuAction(favorites, 0, "Remove from Favorites"), Action::toggleFavorite);
}

TEST_F(OrganizationGridScreenTest, CardFacesSummariseTheOrganization) {
    Organization& acme = addOrganization("Acme Corp");
    acme.projectName = "Website";
    acme.isFavorite = true;
    addService(acme, "Expiring", [this](ServiceRecord& s) {
        s.expirationDate = m_clock.now() + 24h * 5;
        s.monthlyCost = Decimal::fromString("12.5").value();
    });
    addService(acme, "Expired",
               [this](ServiceRecord& s) { s.expirationDate = m_clock.now() - 1h; });
    addService(acme, "Warning", [this](ServiceRecord& s) {
        s.setStatus(ServiceStatus::warning);
        s.expirationDate = m_clock.now() + 24h * 60;
    });
    Organization& quiet = addOrganization("Quiet");
    quiet.isActive = false;

    const auto screen = grid();
    ASSERT_EQ(screen.cards().size(), 2U);
    const auto& card = screen.cards()[0];
    EXPECT_EQ(card.projectName, "Website");
    EXPECT_TRUE(card.isFavorite);
    EXPECT_EQ(card.expiringCount, 1U);
    EXPECT_EQ(card.servicesText, "2 services");
    EXPECT_EQ(card.activeDotColor, Palette::Color::green);
    const std::vector<std::pair<std::string, std::string>> rows{
        {"Active", "2"}, {"Expiring", "1"}, {"Expired", "1"}, {"Monthly", "$12.5"}};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(card.summary[i].label, rows[i].first);
        EXPECT_EQ(card.summary[i].value, rows[i].second);
    }
    EXPECT_EQ(card.summary[0].color, Palette::Color::green);
    EXPECT_EQ(card.summary[2].color, Palette::Color::red);
    EXPECT_EQ(card.nextExpirationText, "Next: Mar 15");
    EXPECT_NE(card.accessibleText.find("Acme Corp, Website, favorite"), std::string::npos);

    const auto& empty = screen.cards()[1];
    EXPECT_EQ(empty.servicesText, "0 services") << "plural even when there are none";
    EXPECT_EQ(empty.activeDotColor, Palette::Color::secondary);
    EXPECT_EQ(empty.summary[1].color, Palette::Color::secondary);
    EXPECT_EQ(empty.nextExpirationText, "");
}

TEST_F(OrganizationGridScreenTest, ArchiveMovesItToTheArchiveAndRestoreBringsItBack) {
    Organization& acme = addOrganization("Acme");
    addOrganization("Beta");
    auto screen = grid();
    ASSERT_EQ(menuAction(screen, 0, "Archive"), Action::archive);
    screen.perform(Action::archive, 0);
    EXPECT_FALSE(store().hasUnsavedChanges());
    screen.rebuild();
    EXPECT_EQ(names(screen), std::vector<std::string>{"Beta"});
    ASSERT_EQ(store().fetchArchivedOrganizations(), std::vector<Organization*>{&acme});

    // An archived organization's menu offers "Restore" where "Archive" was (ArchiveScreenTest).
    OrganizationActions(store(), m_state).perform(Action::restore, acme);
    screen.rebuild();
    EXPECT_EQ(names(screen), (std::vector<std::string>{"Acme", "Beta"}));
    EXPECT_TRUE(store().fetchArchivedOrganizations().empty());
}

TEST_F(OrganizationGridScreenTest, DeleteTakesTheServicesSecretsAndEveryReferenceAlong) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& server = addService(acme, "Server", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        s.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
    });
    ASSERT_TRUE(store().setPassword("hunter2", server));
    ASSERT_TRUE(store().setAPIKey("sk-123", server));
    const std::string passwordAccount = server.secretKeychainID;
    const std::string apiKeyAccount = server.apiKeyKeychainID;
    Organization& other = addOrganization("Other");
    ServiceRecord& kept = addService(other, "Kept", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    ASSERT_TRUE(store().setPassword("stays", kept));
    m_state.navigateTo(server);
    m_state.setEditingOrganization(&acme);

    auto screen = grid();
    ASSERT_EQ(menuAction(screen, 0, "Delete"), Action::deleteOrganization);
    screen.perform(Action::deleteOrganization, 0);

    EXPECT_EQ(m_keychain.readData(passwordAccount), std::nullopt);
    EXPECT_EQ(m_keychain.readData(apiKeyAccount), std::nullopt);
    EXPECT_EQ(store().getPassword(kept), "stays");
    EXPECT_EQ(m_state.selectedOrganization(), nullptr);
    EXPECT_EQ(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.editingOrganization(), nullptr);
    EXPECT_EQ(store().fetchOrganizations(true), std::vector<Organization*>{&other});
    EXPECT_FALSE(store().hasUnsavedChanges());
}

TEST_F(OrganizationGridScreenTest, OpenEditAndShareGoThroughTheNavigationState) {
    Organization& acme = addOrganization("Acme");
    addService(acme, "Live");
    addService(acme, "Old", [](ServiceRecord& s) { s.isArchived = true; });
    m_state.setSelectedOrgTab(OrgDetailTab::notes);
    auto screen = grid();

    screen.open(0);
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
    EXPECT_EQ(m_state.selectedOrgTab(), OrgDetailTab::overview);
    screen.perform(Action::edit, 0);
    EXPECT_EQ(m_state.editingOrganization(), &acme);
    EXPECT_TRUE(m_state.showingNewOrganization());
    screen.perform(Action::share, 0);
    EXPECT_EQ(m_state.shareOrganization(), &acme);
    EXPECT_EQ(m_state.shareServices().size(), 2U) << "every service, archived ones too";
    EXPECT_TRUE(m_state.showingShareFlow());
}

} // namespace
} // namespace vorlane::testing
