// SPDX-License-Identifier: GPL-3.0-or-later
// The settings widget's wiring, offscreen: the window and the sheet edit the same preferences, and
// each shows what the other wrote when it is shown again.

#include "screens/SettingsView.h"

#include "MainWindow.h"
#include "ScreenFactory.h"
#include "ScreenFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QTabBar>

namespace vorlane::testing {
namespace {

class SettingsViewTest : public ScreenFixture {};

TEST_F(SettingsViewTest, AChoiceInTheWindowShowsInTheSheetAndBack) {
    std::unique_ptr<QWidget> window(ScreenFactory::createSettingsWindow(context()));
    auto* view = qobject_cast<SettingsView*>(window.get());
    ASSERT_NE(view, nullptr);
    window->show();
    EXPECT_EQ(view->clipboardPicker()->currentText(), QStringLiteral("30 seconds"));
    EXPECT_TRUE(view->expenseRemindersToggle()->isChecked());

    // The person picks "Never" with the keyboard, as a screen-reader user would.
    view->setCurrentIndex(1);
    view->clipboardPicker()->setFocus();
    QTest::keyClick(view->clipboardPicker(), Qt::Key_End);
    EXPECT_EQ(m_preferences.doubleValue("clipboardClearTimeout", -1), 0.0);

    MainWindow main(context());
    main.show();
    m_state.setShowingSettings(true);
    QDialog* sheet = main.sheet(Sheet::settings);
    ASSERT_NE(sheet, nullptr);
    auto* inSheet = sheet->findChild<SettingsView*>();
    ASSERT_NE(inSheet, nullptr);
    EXPECT_EQ(inSheet->clipboardPicker()->currentText(), QStringLiteral("Never"));

    inSheet->expenseRemindersToggle()->click();
    sheet->reject();
    EXPECT_FALSE(m_state.showingSettings());
    window->hide();
    window->show();
    EXPECT_FALSE(view->expenseRemindersToggle()->isChecked());
}

TEST_F(SettingsViewTest, TheSettingsCommandOpensOneWindowOnly) {
    MainWindow main(context());
    main.show();
    main.showSettingsWindow();
    main.showSettingsWindow();
    int windows = 0;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        windows += qobject_cast<SettingsView*>(widget) != nullptr && widget->isVisible() ? 1 : 0;
    }
    EXPECT_EQ(windows, 1);
}

} // namespace
} // namespace vorlane::testing
