// SPDX-License-Identifier: GPL-3.0-or-later
// The sidebar's counts and quick list, read from a real vault: what each badge counts (and what it
// deliberately leaves out), the first organizations by name, and the expiring dot.

#include "screens/SidebarModel.h"

#include "ScreenFixture.h"
#include "app/DetailScreen.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <algorithm>
#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Row = SidebarModel::Row;
using RowKind = SidebarModel::RowKind;

class SidebarModelTest : public ScreenFixture {
protected:
    ServiceRecord& addExpiringIn(Organization& owner, const std::string& title,
                                 std::chrono::hours fromNow) {
        return addService(owner, title, [this, fromNow](ServiceRecord& service) {
            service.expirationDate = m_clock.now() + fromNow;
        });
    }

    static const Row& destination(const SidebarModel& model, SidebarItem item) {
        for (const Row& row : model.rows()) {
            if (row.kind == RowKind::destination && row.item == item) {
                return row;
            }
        }
        ADD_FAILURE() << "no row for " << item.rawValue();
        static const Row none;
        return none;
    }

    static std::vector<std::string> quickList(const SidebarModel& model) {
        std::vector<std::string> names;
        for (const Row& row : model.rows()) {
            if (row.kind == RowKind::organization) {
                names.push_back(row.title);
            }
        }
        return names;
    }
};

TEST_F(SidebarModelTest, EachBadgeCountsWhatItsDestinationLists) {
    Organization& acme = addOrganization("Acme");
    Organization& globex = addOrganization("Globex");
    globex.isFavorite = true;
    Organization& gone = addOrganization("Gone Corp");
    gone.isArchived = true;
    gone.isFavorite = true; // an archived favourite is not a favourite any more
    store().noteChanged(gone);
    addExpiringIn(acme, "Soon", 24h * 10);
    addExpiringIn(acme, "At the edge", 24h * 30);
    addExpiringIn(acme, "Later", 24h * 45);
    addExpiringIn(globex, "Lapsed", -24h * 2);
    ServiceRecord& archived = addExpiringIn(globex, "Archived and lapsed", -24h * 2);
    archiveFlag(archived);
    addService(acme, "No date");

    const SidebarModel model(store(), m_calendar, m_state);
    const std::pair<SidebarItem, std::size_t> expected[] = {
        {SidebarItem::dashboard, 0},   {SidebarItem::organizations, 2},
        {SidebarItem::favorites, 1},   {SidebarItem::expiringSoon, 2},
        {SidebarItem::expired, 1},     {SidebarItem::allCredentials, 5},
        {SidebarItem::allExpenses, 0}, {SidebarItem::archive, 1},
    };
    for (const auto& [item, count] : expected) {
        const Row& row = destination(model, item);
        EXPECT_EQ(row.count, count) << item.rawValue();
        EXPECT_EQ(row.showsBadge, count >= 1) << item.rawValue();
    }
    EXPECT_EQ(destination(model, SidebarItem::expiringSoon).accessibleText,
              "Expiring Soon, 2 services expiring within 30 days");
    EXPECT_EQ(destination(model, SidebarItem::expired).accessibleText,
              "Expired, 1 expired service");
    EXPECT_EQ(destination(model, SidebarItem::dashboard).accessibleText, "Dashboard");
}

TEST_F(SidebarModelTest, AnArchiveOfServicesAloneShowsNoBadgeUntilAnOrganizationJoinsIt) {
    Organization& acme = addOrganization("Acme");
    addService(acme, "Old server", [](ServiceRecord& service) { service.isArchived = true; });
    addService(acme, "Old domain", [](ServiceRecord& service) { service.isArchived = true; });

    SidebarModel model(store(), m_calendar, m_state);
    EXPECT_EQ(destination(model, SidebarItem::archive).count, 0U);
    EXPECT_FALSE(destination(model, SidebarItem::archive).showsBadge);
    EXPECT_EQ(destination(model, SidebarItem::allCredentials).count, 0U);

    archiveFlag(acme);
    model.refresh();
    EXPECT_EQ(destination(model, SidebarItem::archive).count, 1U);
    EXPECT_TRUE(destination(model, SidebarItem::archive).showsBadge);
    EXPECT_EQ(destination(model, SidebarItem::organizations).count, 0U);
    EXPECT_TRUE(quickList(model).empty());
}

TEST_F(SidebarModelTest, PasswordHealthEndsTheLibraryAndCountsTheLastChecksFindingsOnly) {
    addOrganization("Acme");
    SidebarModel model(store(), m_calendar, m_state);
    std::vector<std::string> titles;
    for (const Row& row : model.rows()) {
        titles.push_back(row.title);
    }
    const auto archive = std::find(titles.begin(), titles.end(), "Archive");
    ASSERT_NE(archive, titles.end());
    EXPECT_EQ(*(archive + 1), "Password Health");
    EXPECT_EQ(*(archive + 2), "Organizations") << "the last row of Library";
    EXPECT_FALSE(destination(model, SidebarItem::passwordHealth).showsBadge)
        << "nothing is known before a check";
    EXPECT_EQ(destination(model, SidebarItem::passwordHealth).accessibleText, "Password Health");

    m_state.setPasswordHealthFindings(8);
    model.refresh();
    const Row& checked = destination(model, SidebarItem::passwordHealth);
    EXPECT_EQ(checked.count, 8U);
    EXPECT_TRUE(checked.showsBadge);
    EXPECT_EQ(checked.badgeColor, Palette::Color::orange);
    EXPECT_EQ(checked.accessibleText, "Password Health, 8 password findings");

    // A clean report and a report dropped at the lock both show no badge.
    m_state.setPasswordHealthFindings(0);
    model.refresh();
    EXPECT_FALSE(destination(model, SidebarItem::passwordHealth).showsBadge);
    m_state.setPasswordHealthFindings(std::nullopt);
    model.refresh();
    EXPECT_FALSE(destination(model, SidebarItem::passwordHealth).showsBadge);

    model.choose(SidebarItem::passwordHealth);
    EXPECT_EQ(routeDetail(m_state), DetailScreen::passwordHealth);
}

TEST_F(SidebarModelTest, TheQuickListHoldsTheFirstEightOrganizationsByNameNeverArchivedOnes) {
    // Inserted out of order, with numbers that sort by value and a name in lower case.
    for (const char* name : {"Client 10", "Client 9", "beta works", "Client 2", "Zeta", "Alpha",
                             "Client 1", "Omega", "Delta", "Gamma", "Kappa"}) {
        addOrganization(name);
    }
    Organization& archived = addOrganization("Aardvark Archive");
    archiveFlag(archived);

    const SidebarModel model(store(), m_calendar, m_state);
    EXPECT_EQ(quickList(model),
              (std::vector<std::string>{"Alpha", "beta works", "Client 1", "Client 2", "Client 9",
                                        "Client 10", "Delta", "Gamma"}));
    EXPECT_EQ(destination(model, SidebarItem::organizations).count, 11U)
        << "the count is of every organization, not of the short list";
}

TEST_F(SidebarModelTest, TheOrangeDotMarksAnOrganizationWithAServiceDueWithinAWeek) {
    Organization& due = addOrganization("Due");
    Organization& later = addOrganization("Later");
    Organization& lapsed = addOrganization("Lapsed");
    addExpiringIn(due, "Domain", 24h * 5);
    addExpiringIn(later, "Domain", 24h * 20);
    addExpiringIn(lapsed, "Domain", -24h);

    SidebarModel model(store(), m_calendar, m_state);
    std::vector<std::pair<std::string, bool>> dots;
    for (const Row& row : model.rows()) {
        if (row.kind == RowKind::organization) {
            dots.emplace_back(row.title, row.showsExpiringDot);
        }
    }
    EXPECT_EQ(dots, (std::vector<std::pair<std::string, bool>>{
                        {"Due", true}, {"Lapsed", false}, {"Later", false}}));

    m_clock.advance(24h * 14); // "Later" is now six days away
    model.refresh();
    EXPECT_TRUE(model.rows().back().showsExpiringDot);
    EXPECT_EQ(model.rows().back().accessibleText,
              "Later, organization, has services expiring soon");
}

TEST_F(SidebarModelTest, TheActionsOnlyNavigate) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& server = addService(acme, "Server");
    SidebarModel model(store(), m_calendar, m_state);

    // Choosing a destination leaves an open service in front; the quick list opens an
    // organization on its overview tab; the footer raises the new-organization sheet.
    m_state.navigateTo(server);
    model.choose(SidebarItem::expired);
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::expired);
    EXPECT_EQ(m_state.selectedService(), &server);
    EXPECT_EQ(m_state.selectedOrganization(), &acme);

    m_state.setSelectedOrgTab(OrgDetailTab::notes);
    m_state.setSelectedOrganization(nullptr);
    model.openOrganization(*model.rows().back().organization);
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::organizations);
    EXPECT_EQ(m_state.selectedOrgTab(), OrgDetailTab::overview);

    model.newOrganization();
    EXPECT_TRUE(m_state.showingNewOrganization());
}

} // namespace
} // namespace vorlane::testing
