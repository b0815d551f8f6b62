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

TEST_F(MainWindowTest, OpensAtItsSizeOnTheDashboard) {
    MainWindow window(context());
    window.show();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Vorlane"));
    EXPECT_EQ(window.minimumSize(), QSize(1000, 650));
    EXPECT_EQ(window.size(), QSize(1280, 800));
    EXPECT_EQ(window.detailRoute(), DetailScreen::dashboard);
    EXPECT_EQ(window.searchField()->placeholderText(), QStringLiteral("Search credentials..."));
}

TEST_F(MainWindowTest, CommandsCarryTheirShortcutsAndRaiseTheirFlags) {
    MainWindow window(context());
    window.show();
    const std::pair<QString, QString> shortcuts[] = {
        {QStringLiteral("New Organization"), QStringLiteral("Ctrl+Shift+N")},
        {QStringLiteral("New Service"), QStringLiteral("Ctrl+N")},
        {QStringLiteral("Smart Paste"), QStringLiteral("Ctrl+Shift+V")},
        {QStringLiteral("Dashboard"), QStringLiteral("Ctrl+1")},
        {QStringLiteral("Organizations"), QStringLiteral("Ctrl+2")},
        {QStringLiteral("Expiring Soon"), QStringLiteral("Ctrl+3")},
        {QStringLiteral("Lock Vault"), QStringLiteral("Ctrl+Shift+L")},
    };
    for (const auto& [title, keys] : shortcuts) {
        QAction* action = command(window, title);
        ASSERT_NE(action, nullptr);
        EXPECT_EQ(action->shortcut(), QKeySequence(keys)) << title.toStdString();
    }

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
