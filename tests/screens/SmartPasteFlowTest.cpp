// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SmartPasteFlow.h"

#include "RunCommand.h"
#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

namespace vorlane::testing {
namespace {

const std::string welcomeMail = "Hello Maria,\n"
                                "\n"
                                "Your new VPS is ready.\n"
                                "\n"
                                "Server IP: 203.0.113.42\n"
                                "Root password: Vx7#qLm2pT-unique\n"
                                "Port: 2222\n"
                                "Control panel: https://my.northwind.example/clientarea\n"
                                "Provider: Northwind Cloud\n"
                                "\n"
                                "Your next invoice is due on 2026-03-20.\n";

class SmartPasteFlowTest : public ScreenFixture {
protected:
    SmartPasteFlow flowFor(Organization* organization) {
        return SmartPasteFlow(store(), m_calendar, organization);
    }
};

TEST_F(SmartPasteFlowTest, ParseNeedsMoreThanWhitespaceAndSaveNeedsAnOrganizationAndATitle) {
    Organization& acme = addOrganization("Acme");
    SmartPasteFlow flow = flowFor(nullptr);
    EXPECT_EQ(flow.subtitle(), "Step 1: Paste your credentials");
    flow.setRawText("  \n\t \r\n ");
    EXPECT_FALSE(flow.mainButtonEnabled());
    EXPECT_EQ(flow.characterCount(), "7 characters") << "CR LF is one character";
    flow.setRawText("\u00A0\u3000\u2028 \u00A0");
    EXPECT_FALSE(flow.mainButtonEnabled()) << "no-break and ideographic spaces are whitespace";

    flow.setRawText(welcomeMail);
    ASSERT_TRUE(flow.mainButtonEnabled());
    flow.parse();
    EXPECT_EQ(flow.step(), SmartPasteFlow::Step::review);
    EXPECT_EQ(flow.mainButtonTitle(), "Save Credential");
    EXPECT_FALSE(flow.mainButtonEnabled()) << "no organization chosen yet";
    EXPECT_EQ(flow.save(), nullptr);

    flow.setSelectedOrg(&acme);
    EXPECT_TRUE(flow.mainButtonEnabled());
    flow.editableParsed()->title.clear();
    EXPECT_FALSE(flow.mainButtonEnabled());
}

TEST_F(SmartPasteFlowTest, BackKeepsTheTextAndParsingAgainReplacesEveryEdit) {
    SmartPasteFlow flow = flowFor(nullptr);
    flow.setRawText(welcomeMail);
    flow.parse();
    const std::string parsedTitle = flow.parsed()->title;
    flow.editableParsed()->title = "My edit";
    flow.back();
    EXPECT_EQ(flow.step(), SmartPasteFlow::Step::paste);
    EXPECT_EQ(flow.rawText(), welcomeMail);
    EXPECT_EQ(flow.parsed()->title, "My edit") << "Back keeps the parsed fields";

    flow.parse();
    EXPECT_EQ(flow.parsed()->title, parsedTitle);
}

TEST_F(SmartPasteFlowTest, AParseOfAnOlderTextIsNotApplied) {
    SmartPasteFlow flow = flowFor(nullptr);
    flow.setRawText("Host: a.example");
    flow.setRawText("Host: b.example");
    EXPECT_FALSE(flow.applyParse("Host: a.example", ParsedCredential{}));
    EXPECT_EQ(flow.step(), SmartPasteFlow::Step::paste);
}

TEST_F(SmartPasteFlowTest, SavingStoresTheRecordAsParsedAndThePasswordOnlyInTheKeyring) {
    Organization& acme = addOrganization("Acme");
    SmartPasteFlow flow = flowFor(&acme);
    flow.setRawText(welcomeMail);
    flow.parse();
    ASSERT_EQ(flow.selectedOrg(), &acme) << "the opener's organization is preselected";
    ASSERT_TRUE(flow.detectedDateText().has_value());
    EXPECT_EQ(*flow.detectedDateText(), "Mar 20, 2026");

    ServiceRecord* saved = flow.save();
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(flow.step(), SmartPasteFlow::Step::done);
    EXPECT_EQ(flow.subtitle(), "Saved successfully");
    EXPECT_EQ(saved->organization, &acme);
    EXPECT_EQ(saved->serviceType(), ServiceType::vps);
    EXPECT_EQ(saved->port, 2222);
    EXPECT_EQ(saved->billingCycle(), BillingCycle::none);
    EXPECT_EQ(saved->riskLevel(), RiskLevel::low);
    EXPECT_TRUE(saved->monthlyCost.isZero() && saved->yearlyCost.isZero());
    EXPECT_TRUE(saved->apiKeyKeychainID.empty());
    EXPECT_EQ(saved->secretKeychainID.rfind("vorlane.secret.", 0), 0U);
    EXPECT_EQ(store().getPassword(*saved), "Vx7#qLm2pT-unique");

    // Ten days away: the detected date is the expiration date, so the renewal lists have it.
    const std::vector<ServiceRecord*> expiring = store().fetchExpiringSoon(30);
    EXPECT_NE(std::find(expiring.begin(), expiring.end(), saved), expiring.end());

    EXPECT_FALSE(store().hasUnsavedChanges());
    const std::string vault = m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString();
    for (const std::string& file : {vault, vault + "-wal"}) {
        EXPECT_EQ(readFile(file).find("Vx7#qLm2pT-unique"), std::string::npos) << file;
        EXPECT_EQ(readFile(file).find(welcomeMail.substr(0, 20)), std::string::npos) << file;
    }
}

// A welcome mail with more secrets than the one password the parser takes.
const std::string mailWithSecrets = "Your VPS is ready.\n"
                                    "Server IP: 203.0.113.42\n"
                                    "Root password: Vx7#qLm2pT-unique\n"
                                    "Backup password: Bk-77f3-zz91-q\n"
                                    "API token: tok_live_8d7Hq2Lx55\n"
                                    "Keyboard layout: German\n"
                                    "monitoringApiKey = mon-4f1e-990a\n"
                                    "Port: 2222\n";

TEST_F(SmartPasteFlowTest, SecretLinesOfTheNotesGoToTheKeyringAsTheAPIKeyNotToTheVaultFile) {
    Organization& acme = addOrganization("Acme");
    SmartPasteFlow flow = flowFor(&acme);
    flow.setRawText(mailWithSecrets);
    flow.parse();
    const std::vector<SmartPasteFlow::SecretLine> secrets = flow.secretLines();
    ASSERT_EQ(secrets.size(), 3U) << flow.parsed()->notes;
    EXPECT_EQ(secrets[0].label, "Backup password");
    EXPECT_EQ(secrets[1].label, "API token");
    EXPECT_EQ(secrets[2].label, "monitoringApiKey");
    for (const SmartPasteFlow::SecretLine& secret : secrets) {
        EXPECT_TRUE(secret.storeAsAPIKey) << secret.line;
    }

    ServiceRecord* saved = flow.save();
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(store().getPassword(*saved), "Vx7#qLm2pT-unique");
    EXPECT_EQ(store().getAPIKey(*saved), "Backup password: Bk-77f3-zz91-q\n"
                                         "API token: tok_live_8d7Hq2Lx55\n"
                                         "monitoringApiKey = mon-4f1e-990a");
    EXPECT_EQ(saved->notes, "Your VPS is ready.\nKeyboard layout: German");

    const std::string vault = m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString();
    // The file and its write-ahead log, where the saved notes are until a checkpoint.
    const std::string bytes = readFile(vault) + readFile(vault + "-wal");
    EXPECT_NE(bytes.find("Keyboard layout: German"), std::string::npos);
    for (const char* secret : {"Bk-77f3-zz91-q", "tok_live_8d7Hq2Lx55", "mon-4f1e-990a"}) {
        EXPECT_EQ(bytes.find(secret), std::string::npos) << secret;
    }
}

TEST_F(SmartPasteFlowTest, AnOtpauthURIInTheTextBecomesTheOneTimeCodeNeverNotesOrAddress) {
    Organization& acme = addOrganization("Acme");
    SmartPasteFlow flow = flowFor(&acme);
    const std::string uri =
        "otpauth://totp/Acme:ops@acme.example?secret=JBSWY3DPEHPK3PXP&issuer=Acme";
    // A broken URI first: only a valid one is taken.
    flow.setRawText("Host: panel.acme.example\nUsername: ops\nPassword: Vx7#qLm2pT-unique\n"
                    "Old: otpauth://totp/x?secret=1\n2FA: " +
                    uri + "\nKeyboard layout: German\n");
    flow.parse();
    EXPECT_EQ(flow.oneTimeCode(), uri);
    EXPECT_EQ(flow.parsed()->notes.find("JBSWY3DPEHPK3PXP"), std::string::npos)
        << flow.parsed()->notes;
    EXPECT_NE(flow.parsed()->notes.find("Keyboard layout: German"), std::string::npos);
    EXPECT_EQ(flow.parsed()->loginURL.find("otpauth"), std::string::npos);

    ServiceRecord* saved = flow.save();
    ASSERT_NE(saved, nullptr);
    EXPECT_FALSE(saved->totpKeychainID.empty());
    EXPECT_EQ(store().getTOTPSecret(*saved), uri);
    const std::string vault = m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString();
    const std::string bytes = readFile(vault) + readFile(vault + "-wal");
    EXPECT_NE(bytes.find("Keyboard layout: German"), std::string::npos);
    EXPECT_EQ(bytes.find("JBSWY3DPEHPK3PXP"), std::string::npos);

    // Text without one leaves the service without a one-time code.
    SmartPasteFlow plain = flowFor(&acme);
    plain.setRawText("Host: mail.acme.example\nPassword: pw-123\n");
    plain.parse();
    EXPECT_EQ(plain.oneTimeCode(), "");
    ServiceRecord* second = plain.save();
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(second->totpKeychainID.empty());
}

TEST_F(SmartPasteFlowTest, ALineKeptInNotesStaysThereAndANewParseForgetsTheChoice) {
    Organization& acme = addOrganization("Acme");
    SmartPasteFlow flow = flowFor(&acme);
    flow.setRawText(mailWithSecrets);
    flow.parse();
    flow.setStoreAsAPIKey("API token: tok_live_8d7Hq2Lx55", false);
    EXPECT_FALSE(flow.secretLines()[1].storeAsAPIKey);
    flow.back();
    flow.parse();
    EXPECT_TRUE(flow.secretLines()[1].storeAsAPIKey);

    flow.setStoreAsAPIKey("Backup password: Bk-77f3-zz91-q", false);
    flow.setStoreAsAPIKey("monitoringApiKey = mon-4f1e-990a", false);
    // Lines typed into the notes during review count as they are now.
    flow.editableParsed()->notes += "\nSupport pin: 7731";
    ServiceRecord* saved = flow.save();
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(store().getAPIKey(*saved), "API token: tok_live_8d7Hq2Lx55\nSupport pin: 7731");
    EXPECT_EQ(saved->notes, "Your VPS is ready.\nBackup password: Bk-77f3-zz91-q\n"
                            "Keyboard layout: German\nmonitoringApiKey = mon-4f1e-990a");
}

TEST_F(SmartPasteFlowTest, APortThatIsNotANumberAndAnEmptyPasswordStoreNothing) {
    Organization& acme = addOrganization("Acme");
    SmartPasteFlow flow = flowFor(&acme);
    flow.setRawText("Host: files.example\nUsername: deploy\nPort: 2222");
    flow.parse();
    flow.editableParsed()->portString = "abc";
    flow.editableParsed()->password.clear();
    ServiceRecord* saved = flow.save();
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(saved->port, std::nullopt);
    EXPECT_TRUE(saved->secretKeychainID.empty());
    EXPECT_EQ(store().getPassword(*saved), std::nullopt);
    EXPECT_EQ(flow.detectedDateText(), std::nullopt);
}

} // namespace
} // namespace vorlane::testing
