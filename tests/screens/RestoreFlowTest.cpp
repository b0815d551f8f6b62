// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RestoreFlow.h"

#include "ScreenFixture.h"
#include "TestKeyring.h"
#include "backup/BackupFile.h"
#include "backup/BackupSnapshot.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <fstream>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

constexpr const char* backupPassword = "violet tractor harbour 1947";
constexpr BackupKdfParameters cheapKdf{.memoryKiB = 64, .passes = 1, .lanes = 1};

class RestoreFlowTest : public ScreenFixture {
protected:
    std::string pathIn(const char* name) const {
        return m_folder.filePath(QString::fromLatin1(name)).toStdString();
    }

    // A service of `owner` in `vault` whose password is in the keyring.
    ServiceRecord& addWithPassword(DataStore& vault, Organization& owner, const std::string& title,
                                   const std::string& password) {
        ServiceRecord service = ServiceRecord::created(m_clock.now());
        service.title = title;
        service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        ServiceRecord& added = vault.insert(std::move(service), owner);
        EXPECT_TRUE(vault.setPassword(password, added));
        return added;
    }

    // Backs up `vault` to `path` as the window does, with a cheap key derivation.
    void backUp(DataStore& vault, const std::string& path) {
        std::optional<BackupContents> contents = BackupSnapshot::take(vault, m_clock.now());
        ASSERT_TRUE(contents.has_value());
        ASSERT_FALSE(BackupFile::write(path, *contents, backupPassword, cheapKdf).has_value());
    }

    // Another vault beside the fixture's, on the same keyring: one organization with three
    // services, backed up to `path`, then its secrets taken out of the keyring, so that only a
    // restore can bring them back.
    std::unique_ptr<DataStore> sourceBackedUpTo(const std::string& path) {
        auto opened = DataStore::open(pathIn("source.sqlite"), m_keychain, m_calendar, m_timers);
        EXPECT_TRUE(opened);
        std::unique_ptr<DataStore> source = std::move(opened).value();
        Organization organization = Organization::created(m_clock.now());
        organization.name = "Acme Corp";
        Organization& acme = source->insert(std::move(organization));
        addWithPassword(*source, acme, "Mail server", "mail-pw");
        addWithPassword(*source, acme, "Router", "router-pw");
        addWithPassword(*source, acme, "Web", "web-pw");
        backUp(*source, path);
        for (const ServiceRecord* service : source->fetchAllServices(true)) {
            source->deleteServiceSecrets(*service);
        }
        return source;
    }

    // Opens the chosen file with `password` as the sheet's worker does.
    static void open(RestoreFlow& flow, const std::string& password) {
        flow.password = password;
        std::optional<RestoreFlow::Job> job = flow.unlock();
        ASSERT_TRUE(job.has_value());
        EXPECT_TRUE(flow.isOpening());
        EXPECT_FALSE(flow.mainButtonEnabled());
        flow.opened(job->run, BackupFile::open(*job->bytes, job->password));
    }

    static void restoreAll(RestoreFlow& flow) {
        flow.startRestore();
        ASSERT_EQ(flow.step(), RestoreFlow::Step::restoring);
        while (flow.restoreStep(1)) {
        }
        ASSERT_EQ(flow.step(), RestoreFlow::Step::done);
    }

    std::string writeFile(const char* name, const std::string& bytes) const {
        const std::string path = pathIn(name);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
};

// A file that cannot be a backup this version opens is refused before a password is asked for,
// with what is wrong with it.
TEST_F(RestoreFlowTest, AWrongFileIsRefusedAtOnce) {
    const std::string path = pathIn("good.vorlanebackup");
    auto source = sourceBackedUpTo(path);
    std::string good;
    ASSERT_FALSE(BackupFile::read(path, good).has_value());
    std::string newer = good;
    newer[14] = 2; // the format version, little-endian
    newer[15] = 0;

    RestoreFlow flow(store(), m_calendar);
    EXPECT_EQ(flow.mainButtonTitle(), "Choose File\u2026");
    const std::pair<std::string, std::string> refused[] = {
        {pathIn("missing.vorlanebackup"), "The file could not be read: No such file or directory."},
        {writeFile("vault.sqlite.copy", "SQLite format 3" + std::string(200, 'x')),
         "This file is not a Vorlane backup."},
        {writeFile("cut.vorlanebackup", good.substr(0, good.size() / 2)),
         "The backup file is incomplete."},
        {writeFile("newer.vorlanebackup", newer),
         "This backup was made by a newer version of Vorlane (format 2)."},
    };
    for (const auto& [file, reason] : refused) {
        EXPECT_FALSE(flow.chooseFile(file));
        EXPECT_EQ(flow.step(), RestoreFlow::Step::chooseFile) << file;
        EXPECT_EQ(flow.fileError(), reason) << file;
    }
    EXPECT_TRUE(flow.chooseFile(path));
    EXPECT_EQ(flow.step(), RestoreFlow::Step::password);
    EXPECT_FALSE(flow.fileError().has_value());
    EXPECT_FALSE(flow.mainButtonEnabled()) << "no password typed yet";
}

TEST_F(RestoreFlowTest, IntoAnEmptyVaultEverythingComesBackWithItsSecrets) {
    const std::string path = pathIn("backup.vorlanebackup");
    auto source = sourceBackedUpTo(path);
    RestoreFlow flow(store(), m_calendar);
    ASSERT_TRUE(flow.chooseFile(path));

    open(flow, "violet tractor harbour 1948");
    EXPECT_EQ(flow.step(), RestoreFlow::Step::password);
    EXPECT_EQ(flow.passwordError(), "The password is wrong or the backup is damaged.");
    EXPECT_FALSE(flow.isOpening());
    EXPECT_EQ(store().countServices(true), 0U) << "nothing changes on a wrong password";

    open(flow, backupPassword);
    ASSERT_EQ(flow.step(), RestoreFlow::Step::summary);
    EXPECT_FALSE(flow.passwordError().has_value());
    using Rows = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(flow.contentsRows(), (Rows{{"Made", "Mar 10, 2026, 1:00\u202fPM"},
                                         {"Holds", "1 organization, 3 services, 3 secrets"}}));
    EXPECT_EQ(flow.planText(), "Your vault is empty: everything in the backup will be restored.");
    EXPECT_EQ(store().countServices(true), 0U) << "nothing changes before Restore";

    flow.startRestore();
    EXPECT_EQ(flow.progressText(), "Writing secrets to the keyring: 0 of 3\u2026");
    EXPECT_TRUE(flow.restoreStep(1));
    EXPECT_NEAR(flow.progress(), 1.0 / 3, 1e-9);
    EXPECT_FALSE(flow.mainButtonEnabled());
    while (flow.restoreStep(1)) {
    }
    ASSERT_EQ(flow.step(), RestoreFlow::Step::done);
    EXPECT_TRUE(flow.restored());
    EXPECT_EQ(
        flow.resultText(),
        "Added 4 records, updated 0 and left 0 as they were; wrote 3 secrets to the keyring.");
    EXPECT_EQ(flow.subtitle(), "Restore finished");

    const std::vector<ServiceRecord*> restored = store().fetchAllServices(true);
    ASSERT_EQ(restored.size(), 3U);
    for (const ServiceRecord* service : restored) {
        const ServiceRecord* original = source->service(service->id);
        ASSERT_NE(original, nullptr) << service->title << " keeps its identity";
        EXPECT_EQ(service->secretKeychainID, original->secretKeychainID);
    }
    EXPECT_EQ(store().getPassword(*restored[0]), "mail-pw");
    EXPECT_EQ(store().getPassword(*restored[1]), "router-pw");
    EXPECT_EQ(store().getPassword(*restored[2]), "web-pw");
}

// Into a vault with records the backup is merged by identity: what the vault lacks comes back,
// a record is replaced only by a newer copy, and nothing is deleted.
TEST_F(RestoreFlowTest, IntoAVaultWithRecordsTheBackupIsMerged) {
    Organization& acme = addOrganization("Acme Corp");
    ServiceRecord& kept = addService(acme, "Mail server");
    ServiceRecord& older = addService(acme, "Router");
    ServiceRecord& gone = addService(acme, "Web", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    ASSERT_TRUE(store().setPassword("web-pw", gone));
    const Uuid goneId = gone.id;
    const std::string path = pathIn("backup.vorlanebackup");
    backUp(store(), path);

    kept.title = "Mail server (moved)";
    kept.updatedAt = m_clock.now() + 1h; // changed in the vault after the backup
    store().noteChanged(kept);
    older.title = "Router (older copy)";
    older.updatedAt = m_clock.now() - 24h; // the backup's copy is newer
    store().noteChanged(older);
    store().deleteService(gone);
    addService(acme, "Added since");

    RestoreFlow flow(store(), m_calendar);
    ASSERT_TRUE(flow.chooseFile(path));
    open(flow, backupPassword);
    ASSERT_EQ(flow.step(), RestoreFlow::Step::summary);
    EXPECT_EQ(flow.planText(), "Your vault already has records, so the backup will be merged "
                               "into it: 1 added, 1 updated (the backup's copy is newer), 2 left "
                               "as they are. Nothing is deleted.");
    restoreAll(flow);
    EXPECT_EQ(flow.resultText(),
              "Added 1 record, updated 1 and left 2 as they were; wrote 1 secret to the keyring.");
    EXPECT_EQ(kept.title, "Mail server (moved)");
    const ServiceRecord* router = store().service(older.id);
    ASSERT_NE(router, nullptr);
    EXPECT_EQ(router->title, "Router");
    const ServiceRecord* web = store().service(goneId);
    ASSERT_NE(web, nullptr);
    EXPECT_EQ(store().getPassword(*web), "web-pw");
    EXPECT_EQ(store().countServices(true), 4U) << "the service added since stays";
}

// Cancel while the key is derived drops the result; cancel during the restore undoes it: the
// vault and the keyring are as they were.
TEST_F(RestoreFlowTest, CancelLeavesTheVaultAndTheKeyringAsTheyWere) {
    const std::string path = pathIn("backup.vorlanebackup");
    auto source = sourceBackedUpTo(path);
    RestoreFlow flow(store(), m_calendar);
    EXPECT_FALSE(flow.cancel()) << "nothing under way: Cancel closes the sheet";
    ASSERT_TRUE(flow.chooseFile(path));

    flow.password = backupPassword;
    std::optional<RestoreFlow::Job> job = flow.unlock();
    ASSERT_TRUE(job.has_value());
    EXPECT_TRUE(flow.cancel());
    EXPECT_FALSE(flow.isOpening());
    flow.opened(job->run, BackupFile::open(*job->bytes, job->password));
    EXPECT_EQ(flow.step(), RestoreFlow::Step::password) << "a cancelled opening is dropped";
    EXPECT_TRUE(flow.mainButtonEnabled());

    open(flow, backupPassword);
    ASSERT_EQ(flow.step(), RestoreFlow::Step::summary);
    flow.startRestore();
    ASSERT_TRUE(flow.restoreStep(1));
    EXPECT_TRUE(flow.cancel());
    EXPECT_EQ(flow.step(), RestoreFlow::Step::done);
    EXPECT_FALSE(flow.restored());
    EXPECT_EQ(flow.resultText(),
              "The restore was cancelled. Your vault and keyring are as they were.");
    EXPECT_EQ(flow.subtitle(), "Nothing was restored");
    EXPECT_FALSE(flow.restoreStep(1));
    EXPECT_EQ(store().countServices(true), 0U);
    EXPECT_TRUE(store().fetchOrganizations(true).empty());
    for (const ServiceRecord* service : source->fetchAllServices(true)) {
        EXPECT_FALSE(source->getPassword(*service).has_value()) << service->title;
    }
}

// The keyring refusing half-way (the session locked it) ends the restore with its reason, and
// the vault is as it was.
TEST_F(RestoreFlowTest, AKeyringThatRefusesHalfWayChangesNothingAndSaysSo) {
    const std::string path = pathIn("backup.vorlanebackup");
    auto source = sourceBackedUpTo(path);
    RestoreFlow flow(store(), m_calendar);
    ASSERT_TRUE(flow.chooseFile(path));
    open(flow, backupPassword);
    ASSERT_EQ(flow.step(), RestoreFlow::Step::summary);
    flow.startRestore();
    ASSERT_TRUE(flow.restoreStep(1));
    lockDefaultCollection();
    while (flow.restoreStep(1)) {
    }
    unlockDefaultCollection();
    ASSERT_EQ(flow.step(), RestoreFlow::Step::done);
    EXPECT_FALSE(flow.restored());
    const std::string result = flow.resultText();
    EXPECT_EQ(result.rfind("The restore failed: ", 0), 0U) << result;
    EXPECT_TRUE(result.ends_with(". Your vault and keyring are as they were.")) << result;
    EXPECT_EQ(store().countServices(true), 0U);
    EXPECT_TRUE(store().fetchOrganizations(true).empty());
}

} // namespace
} // namespace vorlane::testing
