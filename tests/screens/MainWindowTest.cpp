// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "screens/BackupSheet.h"
#include "screens/ImportSheet.h"
#include "screens/RestoreSheet.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

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

    // Chooses `button` in the message box that the next step opens, and notes its text.
    void willAnswer(const QString& button) {
        QTimer::singleShot(0, [this, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr) << "no question was asked";
            m_asked = box->text();
            for (QAbstractButton* each : box->buttons()) {
                if (each->text() == button) {
                    each->click();
                }
            }
        });
    }

    QString m_asked;
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

// File → Import… and the toolbar's Add menu open the same window-modal sheet, one at a time;
// closed, it goes, and the next command opens a fresh one.
TEST_F(MainWindowTest, ImportOpensOneSheetFromTheMenuOrTheAddMenu) {
    MainWindow window(context());
    window.show();
    QAction* import = command(window, QStringLiteral("Import\u2026"));
    ASSERT_NE(import, nullptr);
    EXPECT_EQ(import->shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+I")));
    import->trigger();
    import->trigger();
    const QList<ImportSheet*> sheets = window.findChildren<ImportSheet*>();
    ASSERT_EQ(sheets.size(), 1);
    EXPECT_TRUE(sheets.front()->isVisible());
    EXPECT_EQ(sheets.front()->windowModality(), Qt::WindowModal);

    QPointer<ImportSheet> first = sheets.front();
    first->reject();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());

    QToolButton* add = nullptr;
    QAction* fromAdd = nullptr;
    for (QToolButton* button : window.findChildren<QToolButton*>()) {
        if (button->accessibleName() == QStringLiteral("Add") && button->menu() != nullptr) {
            add = button;
        }
    }
    ASSERT_NE(add, nullptr);
    for (QAction* action : add->menu()->actions()) {
        if (action->text() == QStringLiteral("Import\u2026")) {
            fromAdd = action;
        }
    }
    ASSERT_NE(fromAdd, nullptr);
    fromAdd->trigger();
    ASSERT_EQ(window.findChildren<ImportSheet*>().size(), 1);
    EXPECT_TRUE(window.findChild<ImportSheet*>()->isVisible());
}

// File → Back Up Vault… and Restore from Backup… open one window-modal sheet each, however often
// they are chosen, each on a shortcut of its own.
TEST_F(MainWindowTest, BackUpAndRestoreOpenOneSheetEach) {
    MainWindow window(context());
    window.show();
    QAction* backUp = command(window, QStringLiteral("Back Up Vault\u2026"));
    QAction* restore = command(window, QStringLiteral("Restore from Backup\u2026"));
    ASSERT_NE(backUp, nullptr);
    ASSERT_NE(restore, nullptr);
    EXPECT_EQ(backUp->shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+B")));
    EXPECT_EQ(restore->shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+R")));
    backUp->trigger();
    backUp->trigger();
    restore->trigger();
    restore->trigger();
    ASSERT_EQ(window.findChildren<BackupSheet*>().size(), 1);
    ASSERT_EQ(window.findChildren<RestoreSheet*>().size(), 1);
    EXPECT_EQ(window.findChild<BackupSheet*>()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(window.findChild<RestoreSheet*>()->windowModality(), Qt::WindowModal);

    QPointer<BackupSheet> first = window.findChild<BackupSheet*>();
    first->reject();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    backUp->trigger();
    ASSERT_EQ(window.findChildren<BackupSheet*>().size(), 1);
    EXPECT_TRUE(window.findChild<BackupSheet*>()->isVisible());
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

// Quitting: a copy waiting for its clear is cleared at once, text the person copied elsewhere is
// theirs, and the export key (which the clipboard alone holds) is not lost without a question.
TEST_F(MainWindowTest, QuittingClearsAPendingCopyAndAsksBeforeDroppingTheExportKey) {
    {
        MainWindow window(context());
        window.show();
        m_state.copyToClipboard("hunter2-pw", AppState::clipboardClearDelay);
        command(window, QStringLiteral("Quit"))->trigger();
        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(clipboardText(), std::nullopt) << "cleared at quit, not 30 seconds later";
        EXPECT_EQ(m_timers.pendingCount(), 0U);
    }
    {
        MainWindow window(context());
        window.show();
        m_state.copyToClipboard("hunter2-pw", AppState::clipboardClearDelay);
        m_clipboard.setText("the person's own text");
        EXPECT_TRUE(window.close());
        EXPECT_EQ(clipboardText(), "the person's own text");
    }
    MainWindow window(context());
    window.show();
    m_state.copyToClipboard("hunter2-pw", AppState::clipboardClearDelay);
    m_state.copyExportKey("c2VjcmV0LWtleQ==");
    willAnswer(QStringLiteral("Cancel"));
    EXPECT_FALSE(window.close());
    EXPECT_EQ(m_asked,
              QStringLiteral("The export key is still only on the clipboard. Quit anyway?"));
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(clipboardText(), "c2VjcmV0LWtleQ==");

    willAnswer(QStringLiteral("Quit"));
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(clipboardText(), "c2VjcmV0LWtleQ==") << "the key is never cleared by the program";
}

} // namespace
} // namespace vorlane::testing
