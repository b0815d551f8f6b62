// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SmartPasteSheet.h"

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "model/Organization.h"

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace vorlane::testing {
namespace {

class SmartPasteSheetTest : public ScreenFixture {
protected:
    static QPlainTextEdit* pastedText(QWidget& sheet) {
        return childNamed<QPlainTextEdit>(sheet, QStringLiteral("Pasted text"));
    }
};

TEST_F(SmartPasteSheetTest, APersonPastesReviewsChoosesTheClientAndSaves) {
    Organization& acme = addOrganization("Acme");
    addOrganization("Zed Labs");
    SmartPasteSheet sheet(context(), nullptr);
    sheet.show();

    QGuiApplication::clipboard()->clear();
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Paste from Clipboard")), Qt::LeftButton);
    EXPECT_TRUE(pastedText(sheet)->toPlainText().isEmpty());

    QGuiApplication::clipboard()->setText(
        QStringLiteral("Host: files.example\nUsername: deploy\nPassword: pw-123\n"));
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Paste from Clipboard")), Qt::LeftButton);
    QPushButton* parse = buttonTitled(sheet, QStringLiteral("Parse"));
    ASSERT_NE(parse, nullptr);
    ASSERT_TRUE(parse->isEnabled());
    QTest::mouseClick(parse, Qt::LeftButton);

    ASSERT_EQ(sheet.flow().step(), SmartPasteFlow::Step::review);
    QPushButton* save = buttonTitled(sheet, QStringLiteral("Save Credential"));
    ASSERT_NE(save, nullptr);
    EXPECT_FALSE(save->isEnabled());
    auto* organizations = sheet.findChild<QComboBox*>();
    ASSERT_EQ(organizations->itemText(0), QStringLiteral("Select..."));
    ASSERT_EQ(organizations->itemText(1), QStringLiteral("Acme"));
    organizations->setCurrentIndex(1);
    Q_EMIT organizations->activated(1);
    EXPECT_TRUE(save->isEnabled());

    QTest::mouseClick(save, Qt::LeftButton);
    EXPECT_EQ(sheet.flow().step(), SmartPasteFlow::Step::done);
    ASSERT_EQ(acme.services.size(), 1U);
    EXPECT_EQ(store().getPassword(*acme.services.front()), "pw-123");
}

TEST_F(SmartPasteSheetTest, AHugePasteIsParsedOffTheMainThreadAndApplied) {
    SmartPasteSheet sheet(context(), nullptr);
    sheet.show();
    QString text = QStringLiteral("Host: big.example\n");
    // A megabyte built to make the domain pattern backtrack, in lines as a real paste comes.
    text += (QString(QStringLiteral("a.a.a.")).repeated(1000) + u'\n').repeated(170);
    pastedText(sheet)->setPlainText(text);
    QPushButton* parse = buttonTitled(sheet, QStringLiteral("Parse"));
    ASSERT_TRUE(parse->isEnabled());
    QTest::mouseClick(parse, Qt::LeftButton);
    EXPECT_EQ(sheet.flow().step(), SmartPasteFlow::Step::paste) << "still parsing";
    EXPECT_FALSE(parse->isEnabled());
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == SmartPasteFlow::Step::review; }));
    EXPECT_EQ(sheet.flow().parsed()->hostname, "big.example");
}

} // namespace
} // namespace vorlane::testing
