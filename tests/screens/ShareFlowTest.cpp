// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ShareFlow.h"

#include "RunCommand.h"
#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/PasswordGeneratorPopup.h"
#include "components/StrengthMeter.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "screens/ShareSheet.h"
#include "util/Decimal.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStyledItemDelegate>

#include <fstream>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

class ShareFlowTest : public ScreenFixture {
protected:
    ShareFlowTest()
        : m_acme(addOrganization("Acme Corp")) {
        m_acme.projectName = "Web/App";
        m_mail = &addService(m_acme, "Mail server", [](ServiceRecord& s) {
            s.setServiceType(ServiceType::mailbox);
            s.hostname = "mail.acme.example";
            s.loginURL = "https://mail.acme.example/admin";
            s.username = "postmaster";
            s.port = 993;
            s.notes = "IMAP only";
            s.monthlyCost = *Decimal::fromString("12.50");
            s.expirationDate = utc(2026, 4, 1, 9, 30) + 250ms;
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        });
        m_odd = &addService(m_acme, "Legacy thing", [](ServiceRecord& s) {
            s.serviceTypeRaw = "fax";
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        });
        EXPECT_TRUE(store().setPassword("mail-pw/1", *m_mail));
    }

    std::unique_ptr<ShareFlow> flow() {
        return std::make_unique<ShareFlow>(store(), m_auth, m_state, m_calendar, m_acme,
                                           m_acme.services);
    }

    // Ticks `services`, then moves on to the confirm step.
    static void reachConfirm(ShareFlow& flow, const std::vector<ServiceRecord*>& services) {
        for (const ServiceRecord* service : services) {
            flow.toggle(*service);
        }
        flow.next();
        flow.next();
        ASSERT_EQ(flow.step(), ShareFlow::Step::confirm);
    }

    std::string folder() const { return m_folder.path().toStdString(); }

    // Presses the visible button with this text, as a person would; false when there is none
    // or it is disabled.
    static bool press(QWidget& sheet, const QString& text) {
        QPushButton* button = buttonTitled(sheet, text);
        if (button == nullptr || !button->isEnabled()) {
            return false;
        }
        QTest::mouseClick(button, Qt::LeftButton);
        return true;
    }

    // Ticks the first service in the sheet's list and goes on to the configure step.
    static void tickFirstAndGoOn(ShareSheet& sheet) {
        auto* list = sheet.findChild<QListWidget*>();
        ASSERT_NE(list, nullptr);
        list->item(0)->setCheckState(Qt::Checked);
        ASSERT_TRUE(press(sheet, QStringLiteral("Next")));
    }

    // Where the list draws a row's check box, laid out as its delegate lays out the row.
    static QRect checkBoxOf(QListWidget& list, int row) {
        struct RowLayout : QStyledItemDelegate {
            using QStyledItemDelegate::initStyleOption;
        } layout;
        QStyleOptionViewItem option;
        option.initFrom(list.viewport());
        option.widget = &list;
        option.rect = list.visualItemRect(list.item(row));
        option.decorationSize = list.iconSize();
        layout.initStyleOption(&option, list.model()->index(row, 0));
        return list.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &list);
    }

    Organization& m_acme;
    ServiceRecord* m_mail;
    ServiceRecord* m_odd;
};

TEST_F(ShareFlowTest, ThePayloadCarriesExactlyWhatTheOptionsAllowInItsOwnJsonForm) {
    auto share = flow();
    reachConfirm(*share, {m_mail, m_odd});
    share->options = {.includeSecrets = true, .includeNotes = false, .includeFinancials = false};
    ExportPayload payload = share->buildExportPayload();
    payload.exportDate = utc(2001, 1, 1) + 1500ms;
    EXPECT_EQ(
        payload.toJson(),
        R"({"organizationName":"Acme Corp","projectName":"Web\/App","exportDate":1.5,"items":[)"
        R"({"title":"Mail server","type":"Mailbox","provider":"","hostname":"mail.acme.example",)"
        R"("domain":"","ipAddress":"","loginURL":"https:\/\/mail.acme.example\/admin",)"
        R"("username":"postmaster","password":"mail-pw\/1","email":"","port":993,)"
        R"("expirationDate":"2026-04-01T09:30:00Z"},)"
        R"({"title":"Legacy thing","type":"Custom Secret","provider":"","hostname":"",)"
        R"("domain":"","ipAddress":"","loginURL":"","username":"","email":""}]})");

    share->options = {.includeSecrets = false, .includeNotes = true, .includeFinancials = true};
    const ExportItem item = share->buildExportPayload().items.front();
    EXPECT_EQ(item.password, std::nullopt);
    EXPECT_EQ(item.notes, "IMAP only");
    EXPECT_EQ(item.monthlyCost, "12.5");
}

TEST_F(ShareFlowTest, TheWithheldFieldsFollowTheOptionsInTheirOrder) {
    using Fields = std::vector<std::string>;
    EXPECT_EQ(ExportPayload::redactedFields({}),
              (Fields{"password", "apiKey", "monthlyCost", "yearlyCost"}));
    EXPECT_EQ(ExportPayload::redactedFields({true, false, true}), Fields{"notes"});
    EXPECT_EQ(ExportPayload::redactedFields({true, true, true}), Fields{});
    EXPECT_EQ(ExportPayload::redactedFields({false, false, false}).size(), 5U);
}

TEST_F(ShareFlowTest, StepsTextsAndTheirButtons) {
    auto share = flow();
    EXPECT_EQ(share->title(), "Share: Acme Corp");
    EXPECT_EQ(share->proposedFileName(), "Vorlane-Export-Acme-Corp.vorlane");
    EXPECT_FALSE(share->mainButtonEnabled()) << "nothing is ticked at first";
    share->selectAll();
    EXPECT_EQ(share->selectedCountText(), "2 selected");
    share->toggle(*m_odd);
    EXPECT_EQ(share->selectedCountText(), "1 selected");
    share->next();
    EXPECT_TRUE(share->stepReached(ShareFlow::Step::configure));
    EXPECT_FALSE(share->stepReached(ShareFlow::Step::confirm));

    // A password typed while secrets were on still protects the export once they are off.
    share->options.includeSecrets = true;
    share->password = "pw";
    share->options.includeSecrets = false;
    EXPECT_FALSE(share->showsPasswordField());
    share->next();
    const auto rows = share->summaryRows();
    ASSERT_EQ(rows.size(), 8U);
    EXPECT_EQ(rows[0], (std::pair<std::string, std::string>{"Items", "1 services"}));
    EXPECT_EQ(rows[5].second, "Not specified");
    EXPECT_EQ(rows[6].second, "Never");
    EXPECT_EQ(rows[7].second, "Password-protected");
}

TEST_F(ShareFlowTest, WithoutAPasswordTheKeyStaysOnTheClipboardAndTheShareIsRecorded) {
    auto share = flow();
    reachConfirm(*share, {m_mail});
    share->shareMethod = ShareMethod::redactedSummary;
    std::string written;
    std::optional<bool> closed;
    share->performExport(
        [](const std::string& proposed) { return std::optional<std::string>("/x/" + proposed); },
        [&written](const std::string& path, const std::string& bytes) {
            EXPECT_EQ(path, "/x/Vorlane-Export-Acme-Corp.vorlane");
            written = bytes;
            return std::optional<std::string>();
        },
        [&closed](bool close) { closed = close; });
    ASSERT_EQ(closed, true);
    EXPECT_NE(written.find("\"encryptedPayload\""), std::string::npos);
    const std::optional<std::string> key = m_clipboard.text();
    ASSERT_TRUE(key.has_value());
    EXPECT_EQ(key->size(), 44U);
    m_timers.advance(10min);
    EXPECT_EQ(m_clipboard.text(), key) << "the key is never cleared automatically";
    EXPECT_TRUE(m_state.exportKeyOnlyOnClipboard()) << "quitting will ask before losing it";

    ASSERT_EQ(m_acme.shareHistory.size(), 1U);
    const ShareRecord& record = *m_acme.shareHistory.front();
    EXPECT_EQ(record.shareMethodRaw, "redactedSummary");
    EXPECT_EQ(record.serviceIDs, std::vector<Uuid>{m_mail->id});
    EXPECT_EQ(record.redactedFields,
              (std::vector<std::string>{"password", "apiKey", "monthlyCost", "yearlyCost"}));
    EXPECT_FALSE(store().hasUnsavedChanges());
}

TEST_F(ShareFlowTest, ACancelledSaveStillRecordsAndAFailedWriteRecordsNothing) {
    auto share = flow();
    reachConfirm(*share, {m_mail});
    std::optional<bool> closed;
    share->performExport([](const std::string&) { return std::optional<std::string>(); },
                         [](const std::string&, const std::string&) {
                             ADD_FAILURE() << "nothing is written when the dialog is cancelled";
                             return std::optional<std::string>();
                         },
                         [&closed](bool close) { closed = close; });
    EXPECT_EQ(closed, true);
    EXPECT_EQ(m_acme.shareHistory.size(), 1U);

    auto failing = flow();
    reachConfirm(*failing, {m_mail});
    closed.reset();
    failing->performExport([](const std::string&) { return std::optional<std::string>("/x/file"); },
                           [](const std::string&, const std::string&) {
                               return std::optional<std::string>("Disk full.");
                           },
                           [&closed](bool close) { closed = close; });
    EXPECT_EQ(closed, false);
    EXPECT_EQ(failing->exportError(), "Disk full.");
    EXPECT_FALSE(failing->isExporting());
    EXPECT_EQ(m_acme.shareHistory.size(), 1U);
}

TEST_F(ShareFlowTest, SecretsAskForAuthenticationAndARefusalRecordsNothing) {
    connectAuthentication();
    auto share = flow();
    reachConfirm(*share, {m_mail});
    share->options.includeSecrets = true;
    m_person.willCancel();
    std::optional<bool> closed;
    share->performExport(
        [](const std::string&) { return std::optional<std::string>(); },
        [](const std::string&, const std::string&) { return std::optional<std::string>(); },
        [&closed](bool close) { closed = close; });
    EXPECT_TRUE(share->isExporting());
    EXPECT_FALSE(share->mainButtonEnabled()) << "no second export while one runs";
    ASSERT_TRUE(waitFor([&] { return closed.has_value(); }));
    EXPECT_EQ(*closed, false);
    EXPECT_EQ(share->exportError(), "Authentication required to export secrets.");
    EXPECT_TRUE(m_acme.shareHistory.empty());
    ASSERT_EQ(m_person.requests.size(), 1U);
    EXPECT_EQ(m_person.requests.front().reason, "Authenticate to export secrets for Acme Corp");
}

// End to end through the sheet: real PAM, QSaveFile, and the bundle opened by vorlane-cli with
// the export password gives back the payload with the secret.
TEST_F(ShareFlowTest, TheSheetWritesABundleThatOpenBundleReadsBack) {
    connectAuthentication();
    m_person.willType(userPassword);
    ShareSheet sheet(context(), m_acme, m_acme.services);
    const std::string path = folder() + "/bundle.vorlane";
    // Replacing an older export that others could read: the new one is the owner's alone.
    std::ofstream(path) << "older export";
    std::filesystem::permissions(path, std::filesystem::perms(0644));
    sheet.setFileChooser(
        [&path](const QString&) { return std::optional(QString::fromStdString(path)); });
    sheet.show();
    tickFirstAndGoOn(sheet);
    for (QCheckBox* box : sheet.findChildren<QCheckBox*>()) {
        if (box->text() == QStringLiteral("Include secrets (passwords, API keys)")) {
            box->setChecked(true);
        }
    }
    QTest::keyClicks(childNamed<QLineEdit>(sheet, QStringLiteral("Export password")),
                     QStringLiteral("export pass"));
    ASSERT_TRUE(press(sheet, QStringLiteral("Review")));
    ASSERT_TRUE(press(sheet, QStringLiteral("Export && Share")));
    ASSERT_TRUE(waitFor([&] { return !m_acme.shareHistory.empty(); }));
    EXPECT_EQ(std::filesystem::status(path).permissions() & std::filesystem::perms::all,
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    std::ofstream(folder() + "/pass") << "export pass";
    const CommandRun run = runCommand(std::string(VORLANE_CLI) + " open-bundle " + shellWord(path) +
                                      " --password-file " + shellWord(folder() + "/pass"));
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find(R"("password":"mail-pw\/1")"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(R"("organizationName":"Acme Corp")"), std::string::npos);
}

TEST_F(ShareFlowTest, TheSheetShowsAFailedWriteAndLeavesNoFile) {
    ShareSheet sheet(context(), m_acme, m_acme.services);
    const std::string path = folder() + "/no-such-folder/bundle.vorlane";
    sheet.setFileChooser(
        [&path](const QString&) { return std::optional(QString::fromStdString(path)); });
    sheet.show();
    tickFirstAndGoOn(sheet);
    ASSERT_TRUE(press(sheet, QStringLiteral("Review")));
    ASSERT_TRUE(press(sheet, QStringLiteral("Export && Share")));
    const ShareFlow& share = sheet.flow();
    ASSERT_TRUE(share.exportError().has_value());
    EXPECT_EQ(share.exportError()->rfind("The export could not be saved: ", 0), 0U);
    EXPECT_TRUE(showsLabel(sheet, QString::fromStdString(*share.exportError())));
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_TRUE(m_acme.shareHistory.empty());
    EXPECT_FALSE(std::filesystem::exists(path));
}

// Exports are sealed with a key derived from the password without a work factor, so a short or
// guessable password is warned about; the export itself is still allowed.
TEST_F(ShareFlowTest, AShortOrGuessablePasswordIsWarnedAbout) {
    auto share = flow();
    EXPECT_EQ(share->passwordStrength(), std::nullopt);
    EXPECT_EQ(share->passwordWarning(), std::nullopt) << "no password: key-based encryption";
    for (const char* weak : {"x", "tq8#Vz!mR2p", "Summer2025!!", "passwordpassword!"}) {
        share->password = weak;
        ASSERT_TRUE(share->passwordStrength().has_value());
        EXPECT_EQ(share->passwordWarning(), std::string(ShareFlow::weakPasswordWarning)) << weak;
    }
    share->password = "tq8#Vz!mR2pL";
    EXPECT_EQ(share->passwordWarning(), std::nullopt);
    EXPECT_NE(share->passwordStrength()->level, PasswordStrength::Level::weak);
}

TEST_F(ShareFlowTest, TheSheetShowsTheMeterAndTheWarningUnderThePassword) {
    ShareSheet sheet(context(), m_acme, m_acme.services);
    sheet.show();
    tickFirstAndGoOn(sheet);
    auto* meter = childNamed<StrengthMeter>(sheet, QStringLiteral("Password strength"));
    ASSERT_NE(meter, nullptr);
    EXPECT_FALSE(meter->isVisible()) << "no password field while secrets are off";
    for (QCheckBox* box : sheet.findChildren<QCheckBox*>()) {
        if (box->text() == QStringLiteral("Include secrets (passwords, API keys)")) {
            box->setChecked(true);
        }
    }
    const QString warning = QString::fromLatin1(ShareFlow::weakPasswordWarning);
    auto* field = childNamed<QLineEdit>(sheet, QStringLiteral("Export password"));
    QTest::keyClicks(field, QStringLiteral("summer2025"));
    EXPECT_TRUE(meter->isVisible());
    ASSERT_TRUE(meter->estimate().has_value());
    EXPECT_EQ(meter->estimate()->level, PasswordStrength::Level::weak);
    EXPECT_TRUE(showsLabel(sheet, warning));
    EXPECT_TRUE(
        showsLabel(sheet, QString::fromStdString(PasswordStrength::summary(*meter->estimate()))));

    QTest::keyClicks(field, QStringLiteral("-tq8#Vz!mR2pL"));
    EXPECT_NE(meter->estimate()->level, PasswordStrength::Level::weak);
    EXPECT_FALSE(showsLabel(sheet, warning));

    // "Generate" puts the generator's candidate into the field, and the export uses it.
    field->setText(QStringLiteral("summer2025"));
    QPushButton* generate =
        childNamed<QPushButton>(sheet, QStringLiteral("Generate export password"));
    ASSERT_NE(generate, nullptr);
    QTest::mouseClick(generate, Qt::LeftButton);
    auto* popup = sheet.findChild<PasswordGeneratorPopup*>();
    ASSERT_NE(popup, nullptr);
    const std::string candidate = popup->screen().candidate();
    ASSERT_FALSE(candidate.empty());
    QTest::mouseClick(buttonTitled(*popup, QStringLiteral("Use Password")), Qt::LeftButton);
    EXPECT_EQ(field->text().toStdString(), candidate);
    EXPECT_EQ(sheet.flow().password, candidate);
    EXPECT_NE(meter->estimate()->level, PasswordStrength::Level::weak);
    EXPECT_FALSE(showsLabel(sheet, warning));
}

// A click on a row's box or its text, or Space on the current row, ticks it once; a second
// click unticks it.
TEST_F(ShareFlowTest, AClickOnTheBoxOrTheRowOrSpaceTogglesTheServiceOnce) {
    ShareSheet sheet(context(), m_acme, m_acme.services);
    sheet.show();
    auto* list = sheet.findChild<QListWidget*>();
    ASSERT_NE(list, nullptr);
    const ShareFlow& share = sheet.flow();

    const QPoint box = checkBoxOf(*list, 0).center();
    ASSERT_TRUE(list->visualItemRect(list->item(0)).contains(box));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box);
    EXPECT_TRUE(share.isSelected(*m_mail));
    EXPECT_EQ(list->item(0)->checkState(), Qt::Checked);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box);
    EXPECT_FALSE(share.isSelected(*m_mail));

    const QRect row = list->visualItemRect(list->item(1));
    const QPoint text(row.right() - 40, row.center().y());
    ASSERT_FALSE(checkBoxOf(*list, 1).contains(text));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, text);
    EXPECT_TRUE(share.isSelected(*m_odd));
    EXPECT_EQ(list->item(1)->checkState(), Qt::Checked);

    list->setFocus();
    list->setCurrentRow(0);
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_TRUE(share.isSelected(*m_mail));
    EXPECT_TRUE(share.isSelected(*m_odd));
    EXPECT_EQ(share.selectedCountText(), "2 selected");
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_FALSE(share.isSelected(*m_mail));
    EXPECT_TRUE(buttonTitled(sheet, QStringLiteral("Next"))->isEnabled());
}

} // namespace
} // namespace vorlane::testing
