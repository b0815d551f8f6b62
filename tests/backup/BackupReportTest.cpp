// SPDX-License-Identifier: GPL-3.0-or-later
// What the window and vorlane-cli both say about a backup and its password.

#include "backup/BackupReport.h"

#include "backup/BackupPassword.h"

#include <gtest/gtest.h>

namespace vorlane {
namespace {

BackedUpService serviceNaming(const std::string& title, const std::string& password,
                              const std::string& apiKey, const std::string& totp) {
    BackedUpService service;
    service.record.title = title;
    service.record.secretKeychainID = password;
    service.record.apiKeyKeychainID = apiKey;
    service.record.totpKeychainID = totp;
    return service;
}

TEST(BackupReportTest, CountsWhatTheBackupHoldsAndNamesEverySecretItLacks) {
    BackupContents contents;
    contents.organizations.resize(27);
    contents.services.push_back(
        serviceNaming("GitHub", "vorlane.secret.A", "vorlane.apikey.B", ""));
    contents.services.push_back(serviceNaming("Hetzner", "vorlane.secret.C", "", "vorlane.totp.D"));
    contents.services.push_back(serviceNaming("Notes only", "", "", ""));
    contents.secrets = {{"vorlane.secret.A", "a"},
                        {"vorlane.apikey.B", "b"},
                        {"vorlane.secret.C", "c"},
                        {"vorlane.totp.D", "d"}};
    EXPECT_TRUE(BackupReport::missingSecrets(contents).empty());
    EXPECT_EQ(BackupReport::backedUp(contents),
              "Backed up 27 organizations and 3 services with 4 secrets.");
    EXPECT_EQ(BackupReport::holds(contents), "27 organizations, 3 services, 4 secrets");

    // Whatever the snapshot listed, the records decide what is missing.
    contents.secrets.erase("vorlane.apikey.B");
    contents.secrets.erase("vorlane.totp.D");
    const auto missing = BackupReport::missingSecrets(contents);
    ASSERT_EQ(missing.size(), 2u);
    EXPECT_EQ(BackupReport::describe(missing[0]), "the API key of \"GitHub\"");
    EXPECT_EQ(missing[0].account, "vorlane.apikey.B");
    EXPECT_EQ(BackupReport::describe(missing[1]), "the one-time code secret of \"Hetzner\"");
    EXPECT_EQ(BackupReport::backedUp(contents),
              "Backed up 27 organizations and 3 services with 2 secrets. 2 secrets were not in "
              "the keyring and are missing from the backup.");

    contents.organizations.resize(1);
    contents.services.resize(1);
    contents.secrets = {{"vorlane.secret.A", "a"}};
    EXPECT_EQ(BackupReport::backedUp(contents),
              "Backed up 1 organization and 1 service with 1 secret. 1 secret was not in the "
              "keyring and is missing from the backup.");
}

TEST(BackupReportTest, SaysWhatARestoreDid) {
    EXPECT_EQ(BackupReport::restored({12, 3, 2, 298}),
              "Added 12 records, updated 3 and left 2 as they were; wrote 298 secrets to the "
              "keyring.");
    EXPECT_EQ(BackupReport::restored({1, 0, 1, 1}),
              "Added 1 record, updated 0 and left 1 as it was; wrote 1 secret to the keyring.");
}

TEST(BackupReportTest, ABackupPasswordNeedsTwelveCharactersAStrengthAndTheSameSecondTyping) {
    EXPECT_EQ(BackupPassword::problem("Xq7#pL2!vB"), BackupPassword::tooShort);
    // Eleven characters in more than eleven bytes is still too short.
    EXPECT_EQ(BackupPassword::problem("Ünïcödé-Pä1"), BackupPassword::tooShort);
    EXPECT_EQ(BackupPassword::problem("passwordpassword"), BackupPassword::tooWeak);
    EXPECT_EQ(BackupPassword::problem("aaaaaaaaaaaaaaaa"), BackupPassword::tooWeak);
    EXPECT_EQ(BackupPassword::problem("correct horse battery staple"), std::nullopt);
    EXPECT_EQ(BackupPassword::problem("Ünïcödé-Pä1ß"), std::nullopt);
    EXPECT_EQ(
        BackupPassword::problem("correct horse battery staple", "correct horse battery stapel"),
        BackupPassword::notRepeated);
    EXPECT_EQ(BackupPassword::problem("short", "different"), BackupPassword::tooShort)
        << "the first typing is judged first";
    EXPECT_EQ(
        BackupPassword::problem("correct horse battery staple", "correct horse battery staple"),
        std::nullopt);
}

} // namespace
} // namespace vorlane
