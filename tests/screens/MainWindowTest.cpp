// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include "ScreenFixture.h"
#include "model/Organization.h"

#include <QAction>
#include <QDialog>
#include <QLineEdit>
#include <QMenuBar>

namespace vorlane::testing {
namespace {

class MainWindowTest : public ScreenFixture {
protected:
    // The window's own command, found by its menu title, as a person would use it.
    QAction* command(MainWindow& window, const QString& title) {
        for (QAction* action : window.menuBar()->findChildren<QAction*>()) {
            if (action->text() == title) {
                return action;
            }
        }
        ADD_FAILURE() << "no command " << title.toStdString();
        return nullptr;
    }
};

TEST_F(MainWindowTest, OpensOnTheDashboardAndACommandRaisesItsSheet) {
    MainWindow window(context());
    window.show();
    EXPECT_EQ(window.detailRoute(), DetailScreen::dashboard);

    command(window, QStringLiteral("New Service"))->trigger();
    EXPECT_TRUE(m_state.showingNewService());
    ASSERT_NE(window.sheet(Sheet::newService), nullptr);
    EXPECT_TRUE(window.sheet(Sheet::newService)->isVisible());
}

TEST_F(MainWindowTest, ClosingASheetClearsItsFlagAndClearingTheFlagClosesIt) {
    MainWindow window(context());
    window.show();
    m_state.setShowingSmartPaste(true);
    QDialog* sheet = window.sheet(Sheet::smartPaste);
    ASSERT_NE(sheet, nullptr);
    sheet->reject();
    EXPECT_FALSE(m_state.showingSmartPaste());
    EXPECT_EQ(window.sheet(Sheet::smartPaste), nullptr);

    m_state.setShowingSettings(true);
    ASSERT_NE(window.sheet(Sheet::settings), nullptr);
    m_state.setShowingSettings(false);
    EXPECT_EQ(window.sheet(Sheet::settings), nullptr);
}

TEST_F(MainWindowTest, TheSearchFieldAndTheStateStayInStep) {
    Organization& acme = addOrganization("Acme");
    MainWindow window(context());
    window.show();
    m_state.navigateTo(acme);
    EXPECT_EQ(window.detailRoute(), DetailScreen::organizationDetail);

    QTest::keyClicks(window.searchField(), QStringLiteral(" "));
    EXPECT_EQ(m_state.searchQuery(), " ");
    EXPECT_EQ(window.detailRoute(), DetailScreen::search);
    m_state.setSearchQuery("");
    EXPECT_TRUE(window.searchField()->text().isEmpty());
    EXPECT_EQ(window.detailRoute(), DetailScreen::organizationDetail);
}

} // namespace
} // namespace vorlane::testing
