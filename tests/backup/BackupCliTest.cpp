// SPDX-License-Identifier: GPL-3.0-or-later
// vorlane-cli backup, verify-backup and restore as a person runs them: on a terminal of their own
// where PAM (pam_wrapper with pam_matrix) asks for the system password, on real vault files and
// the real keyring of the run.

#include "PamTestEnvironment.h"
#include "RunCommand.h"
#include "TerminalSession.h"
#include "VaultFixture.h"
#include "model/Organization.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace vorlane::testing {
namespace {

constexpr const char* systemPassword = "correct horse";
constexpr const char* backupPassword = "plum kettle orbit 47 lantern";

class BackupCliTest : public VaultFixture {
protected:
    BackupCliTest() {
        if (!PamPasswords::wrapped()) {
            ADD_FAILURE() << "run through ctest: PAM must be preloaded";
        }
        m_pam.set(getpwuid(getuid())->pw_name, systemPassword);
        m_backup = m_folder + "/Vorlane-Backup.vorlanebackup";
        m_passwordFile = m_folder + "/backup-password";
        std::ofstream(m_passwordFile) << backupPassword << "\n";
        open();
    }

    // A client with a logo, a service with a password and an API key, an archived one with a
    // password, and one with no secret; saved.
    void plantVault() {
        Organization& client = addOrganization("Zürich AG");
        client.logoData = std::vector<std::uint8_t>{0x89, 'P', 'N', 'G', 0, 1, 2};
        m_store->noteChanged(client);
        ServiceRecord& mail = addService(client, "Mail");
        change(mail, [](ServiceRecord& s) {
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
            s.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
        });
        ASSERT_TRUE(m_store->setPassword("mail pässword, with \"quotes\"", mail));
        ASSERT_TRUE(m_store->setAPIKey("sk-live-123", mail));
        ServiceRecord& old = addService(client, "Old FTP");
        change(old, [](ServiceRecord& s) {
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
            s.isArchived = true;
            s.setStatus(ServiceStatus::archived);
        });
        ASSERT_TRUE(m_store->setPassword("ftp-secret", old));
        addService(client, "Notes only");
        ASSERT_TRUE(m_store->save());
    }

    // `vorlane-cli --vault VAULT ARGUMENTS...` on a terminal, answering the system password.
    std::pair<int, std::string> backupOnTerminal(const std::vector<std::string>& arguments,
                                                 const std::string& typed = systemPassword) {
        std::vector<std::string> all{"--vault", m_path, "backup"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return onTerminal(VORLANE_CLI, all, typed);
    }

    // A command without a terminal: nobody is there to be asked anything.
    static CommandRun cli(const std::string& arguments) {
        return runCommand(std::string(VORLANE_CLI) + " " + arguments);
    }

    std::string withPasswordFile() const {
        return shellWord(m_backup) + " --password-file " + shellWord(m_passwordFile);
    }

    void writeBackupFile(const std::string& bytes) const {
        std::ofstream(m_backup, std::ios::binary | std::ios::trunc) << bytes;
    }

    PamPasswords m_pam;
    std::string m_backup;
    std::string m_passwordFile;
};

TEST_F(BackupCliTest, BackedUpVerifiedAndRestoredIntoANewVaultAndAnEmptiedKeyring) {
    plantVault();
    const auto [status, shown] = backupOnTerminal({m_backup, "--password-file", m_passwordFile});
    ASSERT_EQ(status, 0) << shown;
    EXPECT_NE(shown.find("Authenticate to back up your vault"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Backed up 1 organization and 3 services with 3 secrets."),
              std::string::npos)
        << shown;
    EXPECT_EQ(shown.find(systemPassword), std::string::npos) << "the password was echoed";
    EXPECT_NE(shown.find("Encrypting the backup"), std::string::npos) << "no progress shown";
    struct stat info {};
    ASSERT_EQ(::stat(m_backup.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_EQ(readFile(m_backup).find("sk-live-123"), std::string::npos);

    const CommandRun verified = cli("verify-backup " + withPasswordFile());
    EXPECT_EQ(verified.status, 0) << verified.err;
    // Made now (by the wall clock: the command is a separate program), in the user's words.
    EXPECT_TRUE(verified.out.starts_with("Backup made ")) << verified.out;
    const std::size_t counts = verified.out.find("M: "); // after AM or PM
    ASSERT_NE(counts, std::string::npos) << verified.out;
    EXPECT_EQ(verified.out.substr(counts + 3), "1 organization, 3 services, 3 secrets\nEvery "
                                               "secret its records name is in it.\n");

    // A new machine: none of the secrets in the keyring, and no vault file yet.
    const std::vector<ServiceRecord*> originals = m_store->fetchAllServices(true);
    for (const ServiceRecord* service : originals) {
        for (const std::string* account :
             {&service->secretKeychainID, &service->apiKeyKeychainID}) {
            if (!account->empty()) {
                ASSERT_TRUE(m_keychain.remove(*account));
            }
        }
    }
    const std::string restoredPath = m_folder + "/new/vault.sqlite";
    std::filesystem::create_directory(m_folder + "/new");
    // On a terminal, with the progress there; no system password is asked.
    const auto [restoredStatus, restored] = onTerminal(
        VORLANE_CLI,
        {"--vault", restoredPath, "restore", m_backup, "--password-file", m_passwordFile},
        std::string());
    ASSERT_EQ(restoredStatus, 0) << restored;
    EXPECT_NE(restored.find("Writing secrets to the keyring: 3 of 3"), std::string::npos)
        << restored;
    EXPECT_NE(restored.find("Added 4 records, updated 0 and left 0 as they were; wrote 3 secrets "
                            "to the keyring."),
              std::string::npos)
        << restored;
    EXPECT_EQ(restored.find("Password: "), std::string::npos) << restored;

    auto reopened = DataStore::open(restoredPath, m_keychain, m_calendar, m_timers);
    ASSERT_TRUE(reopened.ok()) << reopened.error();
    DataStore& vault = *reopened.value();
    const std::vector<ServiceRecord*> services = vault.fetchAllServices(true);
    ASSERT_EQ(services.size(), originals.size());
    for (std::size_t i = 0; i < services.size(); ++i) {
        EXPECT_EQ(services[i]->id, originals[i]->id);
        EXPECT_EQ(services[i]->title, originals[i]->title);
        EXPECT_EQ(services[i]->isArchived, originals[i]->isArchived);
        EXPECT_EQ(vault.getPassword(*services[i]), m_store->getPassword(*originals[i]));
    }
    EXPECT_EQ(vault.getPassword(*services[0]), "mail pässword, with \"quotes\"");
    EXPECT_EQ(vault.getAPIKey(*services[0]), "sk-live-123");
    EXPECT_EQ(vault.getPassword(*services[2]), "ftp-secret");
    ASSERT_EQ(vault.fetchOrganizations(true).size(), 1u);
    EXPECT_EQ(vault.fetchOrganizations(true)[0]->name, "Zürich AG");
}

TEST_F(BackupCliTest, TheBackupPasswordIsAskedTwiceWithoutEchoAndHeldToTheWindowsBar) {
    plantVault();
    const auto [status, shown] =
        onTerminal(VORLANE_CLI, {"--vault", m_path, "backup", m_backup},
                   {{"Password: ", systemPassword},
                    {"Backup password: ", "short"},
                    {"Backup password: ", backupPassword},
                    {"Repeat the backup password: ", "plum kettle orbit 47 lanterns"},
                    {"Backup password: ", backupPassword},
                    {"Repeat the backup password: ", backupPassword}});
    ASSERT_EQ(status, 0) << shown;
    EXPECT_NE(shown.find("A backup password needs at least 12 characters."), std::string::npos)
        << shown;
    EXPECT_NE(shown.find("The two passwords are not the same."), std::string::npos) << shown;
    EXPECT_EQ(shown.find(backupPassword), std::string::npos) << "the password was echoed";
    EXPECT_EQ(cli("verify-backup " + withPasswordFile()).status, 0);

    // From a file the same bar holds, and no file is made.
    std::filesystem::remove(m_backup);
    std::ofstream(m_passwordFile, std::ios::trunc) << "passwordpassword\n";
    const auto [weakStatus, weak] = backupOnTerminal({m_backup, "--password-file", m_passwordFile});
    EXPECT_EQ(weakStatus, 1) << weak;
    EXPECT_NE(weak.find("This password can be guessed quickly."), std::string::npos) << weak;
    EXPECT_FALSE(std::filesystem::exists(m_backup));
}

TEST_F(BackupCliTest, AWrongSystemPasswordOrNoTerminalMakesNoBackup) {
    plantVault();
    const auto [status, shown] =
        backupOnTerminal({m_backup, "--password-file", m_passwordFile}, "not it");
    EXPECT_EQ(status, 1) << shown;
    EXPECT_NE(shown.find("authentication failed"), std::string::npos) << shown;
    EXPECT_FALSE(std::filesystem::exists(m_backup));

    const CommandRun nobody = cli("--vault " + shellWord(m_path) + " backup " + withPasswordFile());
    EXPECT_EQ(nobody.status, 1);
    EXPECT_FALSE(std::filesystem::exists(m_backup));
}

TEST_F(BackupCliTest, AWrongPasswordADamagedCutOrNewerFileOrAVaultFileChangeNothing) {
    plantVault();
    ASSERT_EQ(backupOnTerminal({m_backup, "--password-file", m_passwordFile}).first, 0);
    const std::string good = readFile(m_backup);
    const std::string target = m_folder + "/target.sqlite";
    const auto restoreInto = [&] {
        return cli("--vault " + shellWord(target) + " restore " + withPasswordFile());
    };

    std::ofstream(m_passwordFile, std::ios::trunc) << "plum kettle orbit 47 lanterns\n";
    for (const CommandRun& run : {cli("verify-backup " + withPasswordFile()), restoreInto()}) {
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find("The password is wrong or the backup is damaged."),
                  std::string::npos)
            << run.err;
    }
    EXPECT_FALSE(std::filesystem::exists(target)) << "a vault was made for a failed restore";
    std::ofstream(m_passwordFile, std::ios::trunc) << backupPassword << "\n";

    struct Case {
        const char* what;
        std::string bytes;
        const char* message;
    };
    std::string changed = good;
    changed[good.size() / 2] = static_cast<char>(changed[good.size() / 2] ^ 0x01);
    std::string newer = good;
    newer[14] = 2; // the format version, little-endian, after the 14-byte name
    const std::vector<Case> cases{
        {"a changed byte", changed, "The password is wrong or the backup is damaged."},
        {"cut short", good.substr(0, good.size() - 100), "The backup file is incomplete."},
        {"cut in its header", good.substr(0, 30), "The backup file is incomplete."},
        {"a newer format", newer, "This backup was made by a newer version of Vorlane (format 2)."},
        {"a vault file", readFile(m_path), "This file is not a Vorlane backup."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        writeBackupFile(c.bytes);
        for (const CommandRun& run : {cli("verify-backup " + withPasswordFile()), restoreInto()}) {
            EXPECT_EQ(run.status, 1);
            EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
            EXPECT_EQ(run.out, "");
        }
        EXPECT_FALSE(std::filesystem::exists(target));
    }
}

TEST_F(BackupCliTest, AVaultWithRecordsIsMergedIntoOnlyWithMerge) {
    plantVault();
    ASSERT_EQ(backupOnTerminal({m_backup, "--password-file", m_passwordFile}).first, 0);
    // Since the backup: one service renamed (newer than the backup's copy), one added.
    m_clock.advance(std::chrono::hours(1));
    ServiceRecord& mail = *m_store->fetchAllServices(true)[0];
    change(mail, [&](ServiceRecord& s) {
        s.title = "Mail (new host)";
        s.updatedAt = m_clock.now();
    });
    addService(*m_store->fetchOrganizations(true)[0], "Added later");
    ASSERT_TRUE(m_store->save());
    m_store.reset();
    const std::string before = readFile(m_path);

    const CommandRun refused =
        cli("--vault " + shellWord(m_path) + " restore " + withPasswordFile());
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("already has records; nothing was changed. Add --merge"),
              std::string::npos)
        << refused.err;
    EXPECT_EQ(readFile(m_path), before) << "the vault file changed";

    const CommandRun merged =
        cli("--vault " + shellWord(m_path) + " restore --merge " + withPasswordFile());
    ASSERT_EQ(merged.status, 0) << merged.err;
    // Everything of the backup is in the vault already, and the vault's copies are as new or
    // newer: nothing is added or replaced, and the vault's own additions stay.
    EXPECT_EQ(merged.out, "Added 0 records, updated 0 and left 4 as they were; wrote 0 secrets "
                          "to the keyring.\n");
    DataStore& vault = open();
    std::vector<std::string> titles;
    for (const ServiceRecord* service : vault.fetchAllServices(true)) {
        titles.push_back(service->title);
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"Added later", "Mail (new host)", "Notes only",
                                                "Old FTP"}));
}

TEST_F(BackupCliTest, ASecretMissingFromTheKeyringIsNamedAndVerifyFails) {
    plantVault();
    ServiceRecord& lost = addService(*m_store->fetchOrganizations(true)[0], "Lost DNS");
    change(lost,
           [](ServiceRecord& s) { s.secretKeychainID = ServiceRecord::makeSecretKeychainID(); });
    ASSERT_TRUE(m_store->save());

    const auto [status, shown] = backupOnTerminal({m_backup, "--password-file", m_passwordFile});
    ASSERT_EQ(status, 0) << shown;
    EXPECT_NE(shown.find("Backed up 1 organization and 4 services with 3 secrets. 1 secret was "
                         "not in the keyring and is missing from the backup."),
              std::string::npos)
        << shown;
    EXPECT_NE(shown.find("missing: the password of \"Lost DNS\""), std::string::npos) << shown;

    const CommandRun verified = cli("verify-backup " + withPasswordFile());
    EXPECT_EQ(verified.status, 1);
    EXPECT_NE(verified.out.find("1 secret its records name is not in it:\n  the password of "
                                "\"Lost DNS\"\n"),
              std::string::npos)
        << verified.out;
}

TEST_F(BackupCliTest, CtrlCDuringARestoreLeavesTheVaultAndTheKeyringAsTheyWere) {
    // Enough secrets that the restore is still writing when the interrupt comes.
    Organization& client = addOrganization("Acme");
    std::vector<std::string> accounts;
    for (int i = 0; i < 300; ++i) {
        ServiceRecord& service = addService(client, "Service " + std::to_string(i));
        change(service, [](ServiceRecord& s) {
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        });
        ASSERT_TRUE(m_store->setPassword("password " + std::to_string(i), service));
        accounts.push_back(service.secretKeychainID);
    }
    ASSERT_TRUE(m_store->save());
    ASSERT_EQ(backupOnTerminal({m_backup, "--password-file", m_passwordFile}).first, 0);
    for (const std::string& account : accounts) {
        ASSERT_TRUE(m_keychain.remove(account));
    }

    const std::string restoredPath = m_folder + "/restored.sqlite";
    const auto [status, shown] = onTerminal(
        VORLANE_CLI,
        {"--vault", restoredPath, "restore", m_backup, "--password-file", m_passwordFile},
        {{"Writing secrets to the keyring: ", "\x03"}}); // Ctrl+C
    EXPECT_EQ(status, 130) << shown;
    EXPECT_NE(shown.find("Cancelled. The vault and the keyring are as they were."),
              std::string::npos)
        << shown;
    for (const std::string& account : accounts) {
        EXPECT_EQ(m_keychain.readData(account), std::nullopt) << account << " was left behind";
    }
    auto restored = DataStore::open(restoredPath, m_keychain, m_calendar, m_timers);
    ASSERT_TRUE(restored.ok()) << restored.error();
    EXPECT_EQ(restored.value()->countServices(true), 0u);
    EXPECT_TRUE(restored.value()->fetchOrganizations(true).empty());
}

} // namespace
} // namespace vorlane::testing
