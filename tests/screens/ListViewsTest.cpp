// SPDX-License-Identifier: GPL-3.0-or-later
// Wiring of the search, All Credentials and archive widgets, offscreen: the pickers reach their
// screen models, the empty state takes the whole screen and its button raises the sheet's flag,
// the lists follow the store and the query, and Return on a row does what choosing it does.

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "components/ServiceTypePicker.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/AllCredentialsView.h"
#include "screens/ArchiveView.h"
#include "screens/GlobalSearchView.h"

namespace vorlane::testing {
namespace {

class ListViewsTest : public ScreenFixture {};

TEST_F(ListViewsTest, AllCredentialsFilterToNothingShowsOnlyTheEmptyStateUntilAServiceMatches) {
    Organization& owner = addOrganization("Acme Ltd");
    addService(owner, "db", [](ServiceRecord& s) { s.setServiceType(ServiceType::database); });
    AllCredentialsView view(context());
    view.resize(900, 600);
    view.show();
    auto* picker = view.findChild<ServiceTypePicker*>();
    auto* empty = view.findChild<EmptyStateView*>();
    ASSERT_TRUE(picker && empty);
    EXPECT_TRUE(showsLabel(view, QStringLiteral("1 items")));
    EXPECT_FALSE(empty->isVisible());

    picker->setSelectedType(ServiceType::apiKey);
    EXPECT_TRUE(empty->isVisible());
    EXPECT_FALSE(picker->isVisible()) << "the filter bar goes with the list";
    EXPECT_EQ(empty->title(), QStringLiteral("No Credentials Yet"));
    ASSERT_NE(empty->actionButton(), nullptr);
    QTest::mouseClick(empty->actionButton(), Qt::LeftButton);
    EXPECT_TRUE(m_state.showingNewService());

    addService(owner, "stripe", [](ServiceRecord& s) { s.setServiceType(ServiceType::apiKey); });
    EXPECT_FALSE(empty->isVisible()) << "the store's change redraws the screen";
    EXPECT_EQ(view.list()->model()->rowCount(), 1);
    EXPECT_TRUE(showsLabel(view, QStringLiteral("1 items")));

    view.list()->setFocus();
    view.list()->setCurrentIndex(view.list()->model()->index(0, 0));
    QTest::keyClick(view.list(), Qt::Key_Return);
    ASSERT_NE(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.selectedService()->title, "stripe");
}

TEST_F(ListViewsTest, SearchFollowsTheQueryAndReturnOnAResultEndsTheSearch) {
    Organization& acme = addOrganization("Acme Ltd");
    addService(acme, "Mail relay");
    addService(addOrganization("Borealis"), "Unrelated");
    m_state.setSearchQuery("acme");
    GlobalSearchView view(context());
    view.resize(900, 600);
    view.show();
    EXPECT_TRUE(showsLabel(view, QStringLiteral("Results for \"acme\"")));
    EXPECT_TRUE(showsLabel(view, QStringLiteral("2 results")));
    // Header, the organization, header, its service.
    ASSERT_EQ(view.list()->model()->rowCount(), 4);

    m_state.setSearchQuery("acme-nothing");
    EXPECT_TRUE(showsLabel(view, QStringLiteral("0 results")));
    EXPECT_TRUE(view.findChild<EmptyStateView*>()->isVisible());

    m_state.setSearchQuery("relay");
    ASSERT_EQ(view.list()->model()->rowCount(), 2);
    view.list()->setCurrentIndex(view.list()->model()->index(1, 0));
    QTest::keyClick(view.list(), Qt::Key_Return);
    EXPECT_FALSE(m_state.isSearching());
    ASSERT_NE(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.selectedService()->title, "Mail relay");
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
}

TEST_F(ListViewsTest, ArchiveRowsFollowTheStoreAndHaveNoActionOfTheirOwn) {
    Organization& owner = addOrganization("Acme Ltd");
    ServiceRecord& service = addService(owner, "old");
    ArchiveView view(context());
    view.resize(900, 600);
    view.show();
    auto* empty = view.findChild<EmptyStateView*>();
    EXPECT_TRUE(empty->isVisible());
    EXPECT_EQ(empty->title(), QStringLiteral("Archive is Empty"));
    EXPECT_EQ(empty->actionButton(), nullptr);

    m_actions->archive(service);
    EXPECT_FALSE(empty->isVisible());
    ASSERT_EQ(view.list()->model()->rowCount(), 2);
    view.list()->setCurrentIndex(view.list()->model()->index(1, 0));
    QTest::keyClick(view.list(), Qt::Key_Return);
    EXPECT_EQ(m_state.selectedService(), nullptr) << "restoring and opening go through the menu";
}

} // namespace
} // namespace vorlane::testing
