// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SmartPasteSheet.h"

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/PasswordGeneratorPopup.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

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

TEST_F(SmartPasteSheetTest, GenerateReplacesThePastedPasswordWithTheGeneratorsCandidate) {
    Organization& acme = addOrganization("Acme");
    SmartPasteSheet sheet(context(), &acme);
    sheet.show();
    pastedText(sheet)->setPlainText(QStringLiteral("Host: files.example\nPassword: pw-123\n"));
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Parse")), Qt::LeftButton);
    ASSERT_EQ(sheet.flow().step(), SmartPasteFlow::Step::review);

    QPushButton* generate = childNamed<QPushButton>(sheet, QStringLiteral("Generate Password"));
    ASSERT_NE(generate, nullptr);
    QTest::mouseClick(generate, Qt::LeftButton);
    auto* popup = sheet.findChild<PasswordGeneratorPopup*>();
    ASSERT_NE(popup, nullptr);
    const std::string candidate = popup->screen().candidate();
    ASSERT_FALSE(candidate.empty());
    QTest::mouseClick(buttonTitled(*popup, QStringLiteral("Use Password")), Qt::LeftButton);
    EXPECT_EQ(childNamed<QLineEdit>(sheet, QStringLiteral("Password"))->text().toStdString(),
              candidate);

    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Save Credential")), Qt::LeftButton);
    ASSERT_EQ(sheet.flow().step(), SmartPasteFlow::Step::done);
    ASSERT_EQ(acme.services.size(), 1U);
    EXPECT_EQ(store().getPassword(*acme.services.front()), candidate);
}

// Each secret line of the notes gets its own choice, stored as the API key unless the person
// picks "Keep in Notes"; a secret line typed into the notes gets one too.
TEST_F(SmartPasteSheetTest, TheReviewOffersAChoiceForEverySecretLineOfTheNotes) {
    Organization& acme = addOrganization("Acme");
    SmartPasteSheet sheet(context(), &acme);
    sheet.show();
    pastedText(sheet)->setPlainText(QStringLiteral("Host: files.example\nPassword: pw-123\n"
                                                   "Backup password: bk-456\nAPI key: ak-789\n"));
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Parse")), Qt::LeftButton);
    ASSERT_EQ(sheet.flow().step(), SmartPasteFlow::Step::review);
    EXPECT_TRUE(showsLabel(sheet, QString::fromLatin1(SmartPasteFlow::secretsHeading)));
    auto* backup = childNamed<QComboBox>(sheet, QStringLiteral("Backup password"));
    auto* apiKey = childNamed<QComboBox>(sheet, QStringLiteral("API key"));
    ASSERT_TRUE(backup != nullptr && apiKey != nullptr);
    EXPECT_EQ(backup->currentText(), QStringLiteral("Store as API Key"));
    EXPECT_EQ(apiKey->currentText(), QStringLiteral("Store as API Key"));

    backup->setFocus();
    QTest::keyClick(backup, Qt::Key_Down);
    EXPECT_EQ(backup->currentText(), QStringLiteral("Keep in Notes"));
    QPlainTextEdit* notes = childNamed<QPlainTextEdit>(sheet, QStringLiteral("Notes"));
    ASSERT_NE(notes, nullptr);
    QTest::keyClick(notes, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(notes, Qt::Key_Return);
    QTest::keyClicks(notes, QStringLiteral("Door PIN: 7731"));
    ASSERT_NE(childNamed<QComboBox>(sheet, QStringLiteral("Door PIN")), nullptr);
    EXPECT_EQ(childNamed<QComboBox>(sheet, QStringLiteral("Backup password"))->currentText(),
              QStringLiteral("Keep in Notes"));

    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Save Credential")), Qt::LeftButton);
    ASSERT_EQ(acme.services.size(), 1U);
    const ServiceRecord& saved = *acme.services.front();
    EXPECT_EQ(store().getAPIKey(saved), "API key: ak-789\nDoor PIN: 7731");
    EXPECT_EQ(saved.notes, "Backup password: bk-456");
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
