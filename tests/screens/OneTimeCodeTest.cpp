// SPDX-License-Identifier: GPL-3.0-or-later
// One-time codes end to end on the real vault, keyring and PAM: the form's field and its QR
// code paste (real images through libzbar), smart paste's review of a pasted URI, the detail's
// revealed code against oathtool, and `vorlane-cli totp` on a terminal.

#include "QrCodeReader.h"
#include "RunCommand.h"
#include "ScreenFixture.h"
#include "TerminalSession.h"
#include "WidgetLookup.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/ServiceDetailScreen.h"
#include "screens/ServiceForm.h"
#include "screens/SmartPasteSheet.h"
#include "totp/Totp.h"
#include "totp/TotpSecret.h"
#include "util/ScopedConnection.h"

#include <QImage>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Field = ServiceDetailScreen::Field;
using Kind = ServiceForm::SecretKind;

constexpr const char* acmeUri =
    "otpauth://totp/Acme:ops@acme.example?secret=JBSWY3DPEHPK3PXP&issuer=Acme";

// What oathtool, the reference implementation, gives for Acme's secret at `at`.
std::string oathtoolCode(Instant at) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(at.time_since_epoch()).count();
    const CommandRun run =
        runReferenceTool("oathtool --totp -b JBSWY3DPEHPK3PXP -N @" + std::to_string(seconds));
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out.substr(0, run.out.find('\n'));
}

// The texts of the QR codes in an image file of the tests' data folder.
std::vector<std::string> qrTexts(const char* name) {
    const QImage grey = QImage(QStringLiteral(VORLANE_TEST_DATA "/") + QString::fromUtf8(name))
                            .convertToFormat(QImage::Format_Grayscale8);
    EXPECT_FALSE(grey.isNull()) << name;
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < grey.height(); ++y) {
        pixels.insert(pixels.end(), grey.constScanLine(y), grey.constScanLine(y) + grey.width());
    }
    return QrCodeReader::decode(pixels, grey.width(), grey.height());
}

class OneTimeCodeTest : public ScreenFixture {
protected:
    OneTimeCodeTest()
        : m_acme(addOrganization("Acme")) {}

    // Saves a new service through the form with `uri` in the One-Time Code field.
    ServiceRecord& savedWithCode(const std::string& title, const std::string& uri) {
        m_state.setNewServiceOrganization(&m_acme);
        ServiceForm form(context());
        form.values().title = title;
        form.values().oneTimeCode.text = uri;
        EXPECT_TRUE(form.save()) << form.saveError();
        return *form.savedService();
    }

    static ServiceDetailScreen::Row codeRow(const ServiceDetailScreen& screen) {
        for (const auto& section : screen.sections()) {
            for (const auto& row : section.rows) {
                if (row.field == Field::oneTimeCode) {
                    return row;
                }
            }
        }
        ADD_FAILURE() << "no One-Time Code row";
        return {};
    }

    Organization& m_acme;
};

TEST_F(OneTimeCodeTest, TheFormChecksTheFieldInPlaceAndStoresTheSecretUnderItsOwnIdentifier) {
    m_state.setNewServiceOrganization(&m_acme);
    ServiceForm form(context());
    form.values().title = "Registrar";
    form.values().oneTimeCode.text = "not a secret";
    EXPECT_EQ(form.errors().oneTimeCode, "Not a valid one-time code secret");
    EXPECT_FALSE(form.canSave());
    EXPECT_FALSE(form.save());

    form.values().oneTimeCode.text = std::string("  ") + acmeUri + "\n";
    EXPECT_EQ(form.errors().oneTimeCode, "");
    ASSERT_TRUE(form.save()) << form.saveError();
    const ServiceRecord& saved = *form.savedService();
    EXPECT_EQ(saved.totpKeychainID.rfind("vorlane.totp.", 0), 0U) << saved.totpKeychainID;
    EXPECT_EQ(store().getTOTPSecret(saved), acmeUri) << "kept as given, without the blanks";
    EXPECT_EQ(saved.secretKeychainID, "");
    EXPECT_EQ(saved.passwordChangedAt, std::nullopt) << "no password was stored";

    // Editing: the field starts empty with the stored secret kept; "Remove" deletes it on save.
    const std::string identifier = saved.totpKeychainID;
    m_state.setEditingService(form.savedService());
    ServiceForm edit(context());
    EXPECT_EQ(edit.values().oneTimeCode.text, "");
    EXPECT_EQ(edit.secretPlaceholder(Kind::oneTimeCode), "Stored — type to replace");
    ASSERT_TRUE(edit.canRemoveStored(Kind::oneTimeCode));
    edit.removeStored(Kind::oneTimeCode);
    ASSERT_TRUE(edit.save()) << edit.saveError();
    EXPECT_EQ(edit.savedService()->totpKeychainID, "");
    EXPECT_EQ(m_keychain.readData(identifier), std::nullopt);
}

TEST_F(OneTimeCodeTest, APasswordIsDatedWhenFirstStoredOrReplacedAndNotByOtherEdits) {
    m_state.setNewServiceOrganization(&m_acme);
    ServiceForm form(context());
    form.values().title = "Hosting";
    form.values().password.text = "first-password";
    ASSERT_TRUE(form.save());
    ServiceRecord& service = *form.savedService();
    const Instant stored = m_clock.now();
    EXPECT_EQ(service.passwordChangedAt, stored);

    m_clock.advance(24h);
    m_state.setEditingService(&service);
    ServiceForm rename(context());
    rename.values().title = "Hosting panel";
    ASSERT_TRUE(rename.save());
    EXPECT_EQ(service.passwordChangedAt, stored) << "the password was left alone";

    m_clock.advance(24h);
    m_state.setEditingService(&service);
    ServiceForm replace(context());
    replace.values().password.text = "second-password";
    ASSERT_TRUE(replace.save());
    EXPECT_EQ(service.passwordChangedAt, m_clock.now());

    m_state.setEditingService(&service);
    ServiceForm remove(context());
    remove.removeStored(Kind::password);
    ASSERT_TRUE(remove.save());
    EXPECT_EQ(service.passwordChangedAt, std::nullopt);
}

TEST_F(OneTimeCodeTest, AQrCodeImageFillsTheFieldOnlyWithAOneTimeCodeSecret) {
    EXPECT_EQ(qrTexts("acme-totp-qr.png"), std::vector<std::string>{acmeUri});
    EXPECT_EQ(qrTexts("not-totp-qr.png"), std::vector<std::string>{"https://acme.example/login"});
    const std::vector<std::uint8_t> blank(64 * 64, 255);
    EXPECT_TRUE(QrCodeReader::decode(blank, 64, 64).empty());
    EXPECT_TRUE(QrCodeReader::decode(blank, 64, 63).empty()) << "size and pixels disagree";

    m_state.setNewServiceOrganization(&m_acme);
    ServiceForm form(context());
    form.values().oneTimeCode.text = "typed before";
    EXPECT_FALSE(form.pasteOneTimeCodeQR({}));
    EXPECT_EQ(form.qrCodeError(), "No QR code found in the image.");
    EXPECT_FALSE(form.pasteOneTimeCodeQR(qrTexts("not-totp-qr.png")));
    EXPECT_EQ(form.qrCodeError(), "The QR code holds no one-time code secret.");
    EXPECT_EQ(form.values().oneTimeCode.text, "typed before");
    EXPECT_TRUE(form.pasteOneTimeCodeQR(qrTexts("acme-totp-qr.png")));
    EXPECT_EQ(form.qrCodeError(), "");
    EXPECT_EQ(form.values().oneTimeCode.text, acmeUri);
}

TEST_F(OneTimeCodeTest, TheRevealedCodeIsOathtoolsAndMovesOnAtTheEndOfItsPeriod) {
    ServiceRecord& service = savedWithCode("Acme DNS", acmeUri);
    connectAuthentication();
    m_clock.advance(12s + 400ms); // 17:00:12.4, 17 s and a bit before the code changes
    ServiceDetailScreen screen(context(), service);
    int redraws = 0;
    const ScopedConnection counting(screen.changed, [&redraws] { ++redraws; });
    EXPECT_EQ(codeRow(screen).value, ServiceDetailScreen::maskedText);
    EXPECT_EQ(codeRow(screen).label, "One-Time Code");

    m_person.willType(userPassword);
    screen.toggleReveal(Field::oneTimeCode);
    ASSERT_TRUE(waitFor([&] { return codeRow(screen).revealed; }));
    EXPECT_EQ(m_person.requests.back().reason, "Reveal one-time code for Acme DNS");
    const std::string first = oathtoolCode(m_clock.now());
    EXPECT_EQ(codeRow(screen).value, first.substr(0, 3) + " " + first.substr(3) + " · 18 s");

    m_timers.advance(600ms); // the next whole second
    EXPECT_EQ(codeRow(screen).value, first.substr(0, 3) + " " + first.substr(3) + " · 17 s");
    const int before = redraws;
    m_timers.advance(17s); // 17:00:30: the next period
    EXPECT_EQ(redraws, before + 17) << "one redraw a second";
    const std::string second = oathtoolCode(m_clock.now());
    ASSERT_NE(second, first);
    EXPECT_EQ(codeRow(screen).value, second.substr(0, 3) + " " + second.substr(3) + " · 30 s");

    screen.copy(Field::oneTimeCode);
    EXPECT_EQ(clipboardText(), second) << "the digits alone, never the secret";
    m_timers.advance(ServiceDetailScreen::copiedMarkDuration); // the check mark goes

    screen.toggleReveal(Field::oneTimeCode);
    EXPECT_EQ(codeRow(screen).value, ServiceDetailScreen::maskedText);
    const int hidden = redraws;
    m_timers.advance(5s);
    EXPECT_EQ(redraws, hidden) << "a hidden code is not redrawn";
}

TEST_F(OneTimeCodeTest, TheCommandLineAuthenticatesThenPrintsOathtoolsCodeAndItsSecondsLeft) {
    savedWithCode("Acme DNS", acmeUri);
    savedWithCode("Twin", acmeUri);
    savedWithCode("twin", acmeUri);
    ServiceRecord& plain = addService(m_acme, "No codes here");
    ASSERT_TRUE(store().save());
    connectAuthentication(); // sets the PAM password the child process checks too
    const std::string vault = store().path();

    const auto [status, shown] =
        onTerminal(VORLANE_CLI, {"--vault", vault, "totp", "acme dns"}, userPassword);
    ASSERT_EQ(status, 0) << shown;
    EXPECT_NE(shown.find("Reveal one-time code for Acme DNS"), std::string::npos) << shown;
    EXPECT_EQ(shown.find(userPassword), std::string::npos) << "the password was echoed";
    // The code printed is the one oathtool gives now or, across a period's end, just before.
    const auto now =
        std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const std::string printed = shown.substr(shown.rfind("Password: ") + 10);
    EXPECT_TRUE(printed.find(oathtoolCode(now)) != std::string::npos ||
                printed.find(oathtoolCode(now - 5s)) != std::string::npos)
        << printed;

    const auto [jsonStatus, json] =
        onTerminal(VORLANE_CLI, {"--vault", vault, "--json", "totp", "Acme DNS"}, userPassword);
    ASSERT_EQ(jsonStatus, 0) << json;
    EXPECT_NE(json.find("{\"code\":\""), std::string::npos) << json;
    EXPECT_NE(json.find("\",\"validFor\":"), std::string::npos) << json;

    const auto [wrongStatus, wrong] =
        onTerminal(VORLANE_CLI, {"--vault", vault, "totp", "Acme DNS"}, "nope");
    EXPECT_EQ(wrongStatus, 1) << wrong;
    EXPECT_NE(wrong.find("authentication failed"), std::string::npos) << wrong;

    // Refusals that need no authentication: an ambiguous title, no secret, no such service.
    const CommandRun twin =
        runCommand(std::string(VORLANE_CLI) + " --vault " + shellWord(vault) + " totp Twin");
    EXPECT_EQ(twin.status, 1);
    EXPECT_NE(twin.err.find("2 services are titled \"Twin\""), std::string::npos) << twin.err;
    const CommandRun none = runCommand(std::string(VORLANE_CLI) + " --vault " + shellWord(vault) +
                                       " totp " + shellWord(plain.id.toString()));
    EXPECT_EQ(none.status, 1);
    EXPECT_NE(none.err.find("\"No codes here\" has no one-time code secret"), std::string::npos)
        << none.err;
    const CommandRun missing =
        runCommand(std::string(VORLANE_CLI) + " --vault " + shellWord(vault) + " totp Nowhere");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
}

// A welcome mail with the code's setup URI, through the smart paste sheet: the review shows the
// URI masked in its own field beside the password (a slip there is refused in place), and the
// saved service reveals oathtool's code, while the URI sits in the keyring alone: never in the
// notes, the vault file or its WAL.
TEST_F(OneTimeCodeTest, ASmartPastedWelcomeMailsCodeIsReviewedMaskedAndKeptInTheKeyringAlone) {
    SmartPasteSheet sheet(context(), &m_acme);
    sheet.show();
    childNamed<QPlainTextEdit>(sheet, QStringLiteral("Pasted text"))
        ->setPlainText(QString::fromStdString(
            std::string("Hello Maria,\n\nyour Acme DNS account is ready.\n\n"
                        "Login: https://dns.acme.example/login\nUsername: ops@acme.example\n"
                        "Password: Vx7#qLm2pT-unique\n\n"
                        "Two-factor setup (scan the QR code or open this link): ") +
            acmeUri + "\n\nKind regards,\nAcme support\n"));
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Parse")), Qt::LeftButton);
    ASSERT_EQ(sheet.flow().step(), SmartPasteFlow::Step::review);
    auto* code = childNamed<QLineEdit>(sheet, QStringLiteral("One-Time Code"));
    ASSERT_NE(code, nullptr);
    EXPECT_TRUE(code->isVisibleTo(&sheet));
    EXPECT_EQ(code->echoMode(), QLineEdit::Password);
    EXPECT_EQ(code->text(), QString::fromLatin1(acmeUri));
    EXPECT_FALSE(childNamed<QPlainTextEdit>(sheet, QStringLiteral("Notes"))
                     ->toPlainText()
                     .contains(QStringLiteral("otpauth")));

    QPushButton* save = buttonTitled(sheet, QStringLiteral("Save Credential"));
    ASSERT_TRUE(save->isEnabled());
    const QString invalid = QString::fromLatin1(TotpSecret::invalidMessage);
    EXPECT_FALSE(showsLabel(sheet, invalid));
    code->selectAll();
    QTest::keyClicks(code, QStringLiteral("JBSWY3DP")); // a key cut short
    EXPECT_TRUE(showsLabel(sheet, invalid));
    EXPECT_FALSE(save->isEnabled());
    code->selectAll();
    QTest::keyClicks(code, QStringLiteral(" ") + QString::fromLatin1(acmeUri));
    EXPECT_FALSE(showsLabel(sheet, invalid));
    ASSERT_TRUE(save->isEnabled());
    QTest::mouseClick(save, Qt::LeftButton);
    ASSERT_EQ(sheet.flow().step(), SmartPasteFlow::Step::done);

    ASSERT_EQ(m_acme.services.size(), 1U);
    ServiceRecord& saved = *m_acme.services.front();
    EXPECT_EQ(store().getTOTPSecret(saved), acmeUri) << "without the blank typed before it";
    EXPECT_EQ(store().getPassword(saved), "Vx7#qLm2pT-unique");
    EXPECT_EQ(saved.passwordChangedAt, m_clock.now()) << "dated when stored";
    EXPECT_EQ(saved.notes.find("otpauth"), std::string::npos) << saved.notes;
    const std::string vault = m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString();
    const std::string bytes = readFile(vault) + readFile(vault + "-wal");
    EXPECT_NE(bytes.find("dns.acme.example"), std::string::npos) << "the record was written";
    EXPECT_EQ(bytes.find("otpauth"), std::string::npos);
    EXPECT_EQ(bytes.find("JBSWY3DPEHPK3PXP"), std::string::npos);

    connectAuthentication();
    m_clock.advance(95s);
    ServiceDetailScreen screen(context(), saved);
    m_person.willType(userPassword);
    screen.toggleReveal(Field::oneTimeCode);
    ASSERT_TRUE(waitFor([&] { return codeRow(screen).revealed; }));
    const std::string expected = oathtoolCode(m_clock.now());
    EXPECT_EQ(codeRow(screen).value.substr(0, 7), Totp::grouped(expected));
}

} // namespace
} // namespace vorlane::testing
