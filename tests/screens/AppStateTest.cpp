// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScreenFixture.h"
#include "app/DetailScreen.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "util/ScopedConnection.h"

#include <QClipboard>
#include <QGuiApplication>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

class AppStateTest : public ScreenFixture {
protected:
    int countChanges(const std::function<void()>& action) {
        int changes = 0;
        const ScopedConnection counting(m_state.changed, [&changes] { ++changes; });
        action();
        return changes;
    }
};

TEST_F(AppStateTest, OnlyTheLatestCopyIsClearedThirtySecondsAfterIt) {
    // The settings' clipboard choice is not what the copies use: 30 seconds whatever it says.
    m_preferences.setDoubleValue("clipboardClearTimeout", 60);
    m_state.copyToClipboard("a", AppState::clipboardClearDelay);
    m_timers.advance(20s);
    m_state.copyToClipboard("b", AppState::clipboardClearDelay);
    EXPECT_EQ(m_timers.pendingCount(), 1U) << "the second copy cancels the first clear";

    m_timers.advance(29s);
    EXPECT_EQ(clipboardText(), "b");
    EXPECT_EQ(m_state.recentlyCopied(), "b");
    m_timers.advance(1s);
    EXPECT_EQ(clipboardText(), std::nullopt);
    EXPECT_EQ(m_state.recentlyCopied(), std::nullopt);
}

TEST_F(AppStateTest, TextCopiedElsewhereInTheMeantimeIsLeftAlone) {
    m_state.copyToClipboard("s3cret", AppState::clipboardClearDelay);
    QGuiApplication::clipboard()->setText(QStringLiteral("the user's own text"));
    m_timers.advance(30s);
    EXPECT_EQ(clipboardText(), "the user's own text");
    EXPECT_EQ(m_state.recentlyCopied(), std::nullopt);
}

TEST_F(AppStateTest, ANonPositiveDelayArmsNothingButCancelsTheEarlierClear) {
    for (const int delay : {0, -5}) {
        m_state.copyToClipboard("first", AppState::clipboardClearDelay);
        m_state.copyToClipboard("kept", delay);
        EXPECT_EQ(m_timers.pendingCount(), 0U) << delay;
        m_timers.advance(10min);
        EXPECT_EQ(clipboardText(), "kept") << delay;
        EXPECT_EQ(m_state.recentlyCopied(), "kept") << delay;
    }
}

TEST_F(AppStateTest, ChangesAreReportedOnlyWhenAFieldReallyChanges) {
    EXPECT_EQ(countChanges([&] { m_state.setSelectedSidebarItem(SidebarItem::dashboard); }), 0);
    EXPECT_EQ(countChanges([&] { m_state.setSelectedSidebarItem(SidebarItem::archive); }), 1);
    EXPECT_EQ(countChanges([&] { m_state.setShowingSettings(false); }), 0);
    EXPECT_EQ(countChanges([&] { m_state.setSearchQuery(""); }), 0);
    EXPECT_EQ(countChanges([&] { m_state.setSearchQuery("acme"); }), 1);
    EXPECT_EQ(countChanges([&] { m_state.setSearchQuery("acme"); }), 0);
}

TEST_F(AppStateTest, NavigationKeepsOrResetsTheOrganizationTabAsEachPathNeeds) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& mail = addService(acme, "Mail");
    m_state.navigateTo(acme);
    m_state.setSelectedOrgTab(OrgDetailTab::notes);

    m_state.navigateTo(mail);
    EXPECT_EQ(m_state.selectedService(), &mail);
    EXPECT_EQ(m_state.selectedOrganization(), &acme);
    EXPECT_EQ(m_state.selectedOrgTab(), OrgDetailTab::notes);

    m_state.navigateTo(acme);
    EXPECT_EQ(m_state.selectedOrgTab(), OrgDetailTab::overview);
    EXPECT_EQ(m_state.selectedService(), &mail) << "an open service stays open";
}

TEST_F(AppStateTest, DetailRoutingFollowsItsPrecedence) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& mail = addService(acme, "Mail");

    m_state.navigateTo(acme);
    m_state.showExpiringSoon();
    EXPECT_EQ(m_state.selectedSidebarItem(), SidebarItem::expiringSoon);
    EXPECT_EQ(routeDetail(m_state), DetailScreen::organizationDetail);
    m_state.showDashboard();
    EXPECT_EQ(routeDetail(m_state), DetailScreen::dashboard);

    m_state.navigateTo(mail);
    m_state.showDashboard();
    EXPECT_EQ(routeDetail(m_state), DetailScreen::serviceDetail);

    m_state.setSearchQuery(" ");
    EXPECT_TRUE(m_state.isSearching());
    EXPECT_EQ(routeDetail(m_state), DetailScreen::search);
    m_state.setSearchQuery("");
    EXPECT_EQ(routeDetail(m_state), DetailScreen::serviceDetail);

    m_state.setSelectedService(nullptr);
    m_state.showOrganizations();
    EXPECT_EQ(routeDetail(m_state), DetailScreen::organizationGrid);
    m_state.setSelectedSidebarItem(SidebarItem::favorites);
    EXPECT_EQ(routeDetail(m_state), DetailScreen::favoritesGrid);
}

TEST_F(AppStateTest, SharingAnOrganizationWithNoSelectionOffersEveryServiceArchivedOnesToo) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& live = addService(acme, "Live");
    ServiceRecord& old = addService(acme, "Old", [](ServiceRecord& s) { s.isArchived = true; });
    m_state.startShare(acme, {});
    EXPECT_TRUE(m_state.showingShareFlow());
    EXPECT_EQ(m_state.shareOrganization(), &acme);
    EXPECT_EQ(m_state.shareServices(), (std::vector<ServiceRecord*>{&live, &old}));

    m_state.setShowingShareFlow(false);
    m_state.startShare(old);
    EXPECT_EQ(m_state.shareServices(), std::vector<ServiceRecord*>{&old});
}

TEST_F(AppStateTest, ForgettingAnOrganizationDropsEveryReferenceToItAndItsServices) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& mail = addService(acme, "Mail");
    m_state.navigateTo(mail);
    m_state.setEditingService(&mail);
    m_state.setNewServiceOrganization(&acme);
    m_state.startShare(acme, {});

    m_state.forget(acme);
    EXPECT_EQ(m_state.selectedService(), nullptr);
    EXPECT_EQ(m_state.selectedOrganization(), nullptr);
    EXPECT_EQ(m_state.editingService(), nullptr);
    EXPECT_EQ(m_state.newServiceOrganization(), nullptr);
    EXPECT_EQ(m_state.shareOrganization(), nullptr);
    EXPECT_TRUE(m_state.shareServices().empty());
}

} // namespace
} // namespace vorlane::testing
