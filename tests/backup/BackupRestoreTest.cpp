// SPDX-License-Identifier: GPL-3.0-or-later
// Restoring a backup into a vault on a real SQLite file and the real keyring: a whole vault into
// a fresh one, the merge rules, and a restore that fails half-way (the vault file cannot grow,
// the keyring locks) or is cancelled, after which the vault and the keyring are as they were.

#include "backup/BackupRestore.h"

#include "RandomVault.h"
#include "TestKeyring.h"
#include "VaultFixture.h"
#include "backup/BackupFile.h"
#include "backup/BackupSnapshot.h"

#include <sys/resource.h>

#include <csignal>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

// Restores `contents` into `store` a few secrets per step, as the window does.
RestoreSummary restore(DataStore& store, BackupContents contents, std::size_t perStep = 7) {
    BackupRestore run(store, std::move(contents));
    const RestoreSummary forecast = run.forecast();
    while (run.step(perStep)) {
    }
    EXPECT_TRUE(run.finished());
    EXPECT_EQ(run.error(), std::nullopt);
    EXPECT_EQ(run.done(), run.total());
    EXPECT_EQ(run.summary(), forecast) << "the forecast promised what the run did";
    return run.summary();
}

// Makes every write of this process to a file past `bytes` fail with EFBIG, as a full disk or
// quota does, until destroyed; the signal that would kill the process is ignored, as SQLite
// expects.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limited = m_before;
        limited.rlim_cur = bytes;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
};

class BackupRestoreTest : public VaultFixture {
protected:
    // A service of `owner` (or of none) in the backup, with a password in it.
    BackedUpService& backedUpService(BackupContents& contents, std::optional<Uuid> owner,
                                     const std::string& title, const std::string& password) {
        ServiceRecord record = ServiceRecord::created(m_clock.now());
        record.title = title;
        record.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        contents.secrets[record.secretKeychainID] = password;
        contents.services.push_back({std::move(record), owner});
        return contents.services.back();
    }
};

TEST_F(BackupRestoreTest, RandomVaultsComeBackWholeThroughABackupFileIntoAFreshVaultAndKeyring) {
    for (const std::uint32_t seed : {11u, 12u, 13u}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::string source = m_folder + "/source-" + std::to_string(seed) + ".sqlite";
        const std::string target = m_folder + "/target-" + std::to_string(seed) + ".sqlite";
        std::string before;
        std::optional<BackupContents> contents;
        {
            m_path = source;
            RandomVault random(seed);
            random.fill(open(), 8, 5);
            DataStore& store = reopen(); // what the file holds, logos unloaded
            before = everything(store);
            contents = BackupSnapshot::take(store, m_clock.now());
            ASSERT_TRUE(contents.has_value());
            ASSERT_FALSE(contents->secrets.empty());
            ASSERT_FALSE(contents->missingSecrets.empty());
            m_store.reset();
        }
        // Through the file, as a backup travels (with a cheap key derivation: its cost is not
        // what is tested here).
        const std::string password = "correct horse battery staple";
        auto opened = BackupFile::open(
            BackupFile::seal(*contents, password, BackupKdfParameters{64, 1, 1}), password);
        ASSERT_TRUE(opened.ok()) << opened.error();
        contents = std::move(opened).value();
        // A new machine: none of the vault's secrets in the keyring.
        for (const auto& [account, secret] : contents->secrets) {
            ASSERT_TRUE(m_keychain.remove(account));
        }
        ASSERT_EQ(vaultItemCount(), 0u);

        m_path = target;
        DataStore& fresh = open();
        const std::size_t records = contents->organizations.size() + contents->services.size() +
                                    contents->shares.size() + contents->payments.size();
        const std::map<std::string, std::string> secrets = contents->secrets;
        const RestoreSummary summary = restore(fresh, std::move(*contents));
        EXPECT_EQ(summary, (RestoreSummary{records, 0, 0, secrets.size()}));
        EXPECT_EQ(everything(fresh), before);
        EXPECT_FALSE(fresh.hasUnsavedChanges());
        EXPECT_EQ(everything(reopen()), before) << "the file holds what memory holds";
        EXPECT_EQ(secretsIn(m_keychain, accountsOf(*m_store)), secrets);
        EXPECT_EQ(vaultItemCount(), secrets.size()) << "nothing but the backup's secrets";
        for (const auto& [account, secret] : secrets) {
            ASSERT_TRUE(m_keychain.remove(account));
        }
        m_store.reset();
    }
}

TEST_F(BackupRestoreTest, MergeAddsWhatIsMissingReplacesOnlyWithNewerCopiesAndDeletesNothing) {
    DataStore& store = open();
    Organization& acme = addOrganization("Acme");
    ServiceRecord& older = addService(acme, "Older in backup");
    ServiceRecord& replaced = addService(acme, "Replaced");
    ServiceRecord& same = addService(acme, "Same time");
    ServiceRecord& deleted = addService(acme, "Deleted since");
    for (ServiceRecord* service : {&older, &replaced, &deleted}) {
        service->secretKeychainID = ServiceRecord::makeSecretKeychainID();
        ASSERT_TRUE(store.setPassword("vault " + service->title, *service));
    }
    ShareRecord share;
    share.id = Uuid::generate();
    share.recipientLabel = "Accountant";
    store.insert(share, acme);
    PaymentRecord payment;
    payment.id = Uuid::generate();
    payment.amount = *Decimal::fromString("12.50");
    store.insert(payment, older);
    ASSERT_TRUE(store.save());
    std::optional<BackupContents> taken = BackupSnapshot::take(store, m_clock.now());
    ASSERT_TRUE(taken.has_value());
    BackupContents contents = std::move(*taken);

    // The vault goes on after the backup: an edit, a deletion, records of its own.
    m_clock.advance(2h);
    change(older, [&](ServiceRecord& s) {
        s.title = "Edited in the vault";
        s.updatedAt = m_clock.now();
    });
    ASSERT_TRUE(store.setPassword("vault newest", older));
    const Uuid deletedId = deleted.id;
    const std::string deletedAccount = deleted.secretKeychainID;
    store.deleteService(deleted);
    Organization& own = addOrganization("Own client");
    addService(own, "Own service");
    ShareRecord ownShare;
    ownShare.id = Uuid::generate();
    store.insert(ownShare, acme);
    ASSERT_TRUE(store.save());

    // The backup's copies, changed as another machine would have: newer ones replace.
    const auto copyOf = [&](const Uuid& id) -> BackedUpService& {
        return *std::find_if(contents.services.begin(), contents.services.end(),
                             [&](const BackedUpService& s) { return s.record.id == id; });
    };
    Organization newcomer = Organization::created(m_clock.now());
    newcomer.name = "Newcomer";
    contents.organizations.push_back(newcomer);
    Organization& acmeCopy = contents.organizations.front();
    acmeCopy.name = "Acme Renamed";
    acmeCopy.logoData = std::vector<std::uint8_t>{1, 2, 3};
    acmeCopy.updatedAt = acme.updatedAt + 1h;
    BackedUpService& replacedCopy = copyOf(replaced.id);
    replacedCopy.record.title = "Replaced from backup";
    replacedCopy.record.updatedAt = replaced.updatedAt + 5h;
    replacedCopy.organizationId = newcomer.id;
    contents.secrets[replaced.secretKeychainID] = "backup password";
    copyOf(same.id).record.title = "Same time, other title";
    copyOf(older.id).record.title = "Older title";
    BackedUpService& stray = backedUpService(contents, Uuid::generate(), "Stray", "stray pw");
    const Uuid strayId = stray.record.id;
    const std::string strayAccount = stray.record.secretKeychainID;
    ShareRecord backupShare;
    backupShare.id = Uuid::generate();
    contents.shares.push_back({backupShare, acme.id});
    PaymentRecord backupPayment;
    backupPayment.id = Uuid::generate();
    backupPayment.amount = *Decimal::fromString("99.99");
    contents.payments.push_back({backupPayment, older.id});

    // Organizations: Acme updated, Newcomer added. Services: "Replaced" updated, "Deleted since"
    // and "Stray" added, "Older in backup" and "Same time" left. Shares and payments: one of
    // each left, one added. Secrets: those of the added and replaced services.
    const RestoreSummary expected{5, 2, 4, 3};
    const RestoreSummary summary = restore(store, contents);
    EXPECT_EQ(summary, expected);

    EXPECT_EQ(older.title, "Edited in the vault");
    EXPECT_EQ(store.getPassword(older), "vault newest");
    EXPECT_EQ(same.title, "Same time");
    EXPECT_EQ(replaced.title, "Replaced from backup");
    ASSERT_NE(replaced.organization, nullptr);
    EXPECT_EQ(replaced.organization->name, "Newcomer");
    EXPECT_EQ(store.getPassword(replaced), "backup password");
    const ServiceRecord* back = store.service(deletedId);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->organization, &acme);
    EXPECT_EQ(store.getPassword(*back), "vault Deleted since");
    EXPECT_EQ(back->secretKeychainID, deletedAccount);
    const ServiceRecord* strayBack = store.service(strayId);
    ASSERT_NE(strayBack, nullptr);
    EXPECT_EQ(strayBack->organization, nullptr) << "its organization is nowhere";
    EXPECT_EQ(store.getPassword(*strayBack), "stray pw");
    EXPECT_EQ(strayBack->secretKeychainID, strayAccount);

    EXPECT_EQ(acme.name, "Acme Renamed");
    EXPECT_EQ(store.logo(acme), (std::vector<std::uint8_t>{1, 2, 3}));
    EXPECT_EQ(acme.services,
              (std::vector<ServiceRecord*>{&older, &same, store.service(deletedId)}));
    EXPECT_EQ(acme.shareHistory.size(), 3u);
    EXPECT_EQ(store.fetchPayments(older).size(), 2u);
    EXPECT_EQ(store.fetchOrganizations(true).size(), 3u) << "nothing deleted";
    EXPECT_EQ(store.countServices(true), 6u) << "nothing deleted";

    const std::string merged = everything(store);
    EXPECT_EQ(everything(reopen()), merged) << "the file holds what memory holds";

    // Restoring the same backup again changes nothing: everything is there and as new.
    EXPECT_EQ(restore(*m_store, contents), (RestoreSummary{0, 0, 11, 0}));
    EXPECT_EQ(everything(*m_store), merged);
}

TEST_F(BackupRestoreTest, AFailedSaveLeavesVaultAndKeyringAsTheyWereAndARetrySucceeds) {
    DataStore& store = open();
    Organization& acme = addOrganization("Acme");
    ServiceRecord& mail = addService(acme, "Mail");
    mail.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    ASSERT_TRUE(store.setPassword("before", mail));
    ASSERT_TRUE(store.save());
    std::optional<BackupContents> taken = BackupSnapshot::take(store, m_clock.now());
    ASSERT_TRUE(taken.has_value());
    BackupContents contents = std::move(*taken);
    contents.services.front().record.updatedAt += 1h;
    contents.secrets[mail.secretKeychainID] = "after";
    // A logo far larger than the whole vault file, so that the save must grow the file.
    Organization big = Organization::created(m_clock.now());
    big.logoData = std::vector<std::uint8_t>(4 << 20, 0x5a);
    contents.organizations.push_back(big);
    for (int i = 0; i < 5; ++i) {
        backedUpService(contents, big.id, "New " + std::to_string(i),
                        "new pw " + std::to_string(i));
    }
    std::vector<std::string> accounts;
    for (const BackedUpService& service : contents.services) {
        accounts.push_back(service.record.secretKeychainID);
    }
    const Uuid mailId = mail.id;
    const std::string before = everything(store);
    const auto secretsBefore = secretsIn(m_keychain, accounts);
    ASSERT_EQ(secretsBefore, (std::map<std::string, std::string>{{accounts[0], "before"}}));

    {
        const std::uintmax_t largest = std::max(std::filesystem::file_size(m_path),
                                                std::filesystem::file_size(m_path + "-wal"));
        FileSizeLimit limit(largest + (256 << 10));
        BackupRestore run(store, contents);
        while (run.step(2)) {
        }
        ASSERT_TRUE(run.finished());
        ASSERT_TRUE(run.error().has_value());
        EXPECT_EQ(run.error()->rfind("The vault could not be saved (", 0), 0u) << *run.error();
        EXPECT_NE(run.error()->find("Nothing was restored."), std::string::npos);
        EXPECT_EQ(run.done(), 6u) << "every secret was written before the save";
    }
    EXPECT_EQ(everything(store), before);
    EXPECT_EQ(secretsIn(m_keychain, accounts), secretsBefore)
        << "the replaced password is given back and the new ones are gone";
    EXPECT_EQ(everything(reopen()), before);

    EXPECT_EQ(restore(*m_store, contents), (RestoreSummary{6, 1, 1, 6}));
    EXPECT_EQ(m_store->getPassword(*m_store->service(mailId)), "after");
}

TEST_F(BackupRestoreTest, AKeyringLockedHalfWayStopsTheRestoreAndTheVaultIsUnchanged) {
    DataStore& store = open();
    addService(addOrganization("Acme"), "Already here");
    ASSERT_TRUE(store.save());
    BackupContents contents;
    for (int i = 0; i < 6; ++i) {
        backedUpService(contents, std::nullopt, "New " + std::to_string(i),
                        "pw " + std::to_string(i));
    }
    const std::string before = everything(store);
    BackupRestore run(store, contents);
    ASSERT_TRUE(run.step(1));
    ASSERT_TRUE(run.step(2));
    EXPECT_EQ(run.done(), 3u);
    lockDefaultCollection();
    EXPECT_FALSE(run.step(2));
    ASSERT_TRUE(run.finished());
    ASSERT_TRUE(run.error().has_value());
    // The three written could not be removed either while the keyring is locked, and it says so.
    EXPECT_EQ(*run.error(), "The Secret Service refused to store a secret (is the keyring "
                            "locked?). Nothing was restored. 3 secrets written by the restore "
                            "could not be taken back out of the Secret Service.");
    EXPECT_EQ(everything(store), before);
    EXPECT_FALSE(store.hasUnsavedChanges());
    EXPECT_EQ(everything(reopen()), before);

    unlockDefaultCollection();
    std::vector<std::string> notReached;
    for (std::size_t i = 3; i < contents.services.size(); ++i) {
        notReached.push_back(contents.services[i].record.secretKeychainID);
    }
    EXPECT_TRUE(secretsIn(m_keychain, notReached).empty());
}

TEST_F(BackupRestoreTest, AKeyringLockedFromTheStartChangesNothing) {
    DataStore& store = open();
    ServiceRecord& mail = addService(addOrganization("Acme"), "Mail");
    mail.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    ASSERT_TRUE(store.setPassword("before", mail));
    std::optional<BackupContents> taken = BackupSnapshot::take(store, m_clock.now());
    ASSERT_TRUE(taken.has_value());
    BackupContents newer = std::move(*taken);
    newer.services.front().record.updatedAt += 1h;
    newer.secrets[mail.secretKeychainID] = "after";
    BackupContents added;
    backedUpService(added, std::nullopt, "New", "pw");
    const std::string before = everything(store);
    lockDefaultCollection();

    // A secret to replace cannot even be read, so nothing is written.
    BackupRestore replacing(store, newer);
    EXPECT_FALSE(replacing.step(10));
    EXPECT_EQ(replacing.error(), "The Secret Service could not be read (is the keyring "
                                 "locked?). Nothing was restored.");
    BackupRestore adding(store, added);
    EXPECT_FALSE(adding.step(10));
    EXPECT_EQ(adding.error(), "The Secret Service refused to store a secret (is the keyring "
                              "locked?). Nothing was restored.");
    EXPECT_EQ(everything(store), before);
    unlockDefaultCollection();
    EXPECT_EQ(vaultItemCount(), 1u);
    EXPECT_EQ(store.getPassword(mail), "before");
}

TEST_F(BackupRestoreTest, CancelHalfWayGivesEveryWrittenSecretBackAndKeepsTheVault) {
    DataStore& store = open();
    ServiceRecord& mail = addService(addOrganization("Acme"), "Mail");
    mail.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    ASSERT_TRUE(store.setPassword("before", mail));
    ASSERT_TRUE(store.save());
    std::optional<BackupContents> taken = BackupSnapshot::take(store, m_clock.now());
    ASSERT_TRUE(taken.has_value());
    BackupContents contents = std::move(*taken);
    contents.services.front().record.updatedAt += 1h;
    contents.services.front().record.title = "Mail from backup";
    contents.secrets[mail.secretKeychainID] = "after";
    for (int i = 0; i < 4; ++i) {
        backedUpService(contents, std::nullopt, "New " + std::to_string(i),
                        "pw " + std::to_string(i));
    }
    std::vector<std::string> accounts;
    for (const BackedUpService& service : contents.services) {
        accounts.push_back(service.record.secretKeychainID);
    }
    const std::string before = everything(store);

    BackupRestore run(store, contents);
    EXPECT_EQ(run.total(), 5u);
    ASSERT_TRUE(run.step(2));
    EXPECT_EQ(run.done(), 2u);
    EXPECT_EQ(secretsIn(m_keychain, accounts),
              (std::map<std::string, std::string>{{accounts[0], "after"}, {accounts[1], "pw 0"}}))
        << "half-way, two secrets are written";
    run.cancel();
    EXPECT_TRUE(run.finished());
    EXPECT_EQ(run.error(), "Cancelled.");
    EXPECT_FALSE(run.step(2));
    EXPECT_EQ(secretsIn(m_keychain, accounts),
              (std::map<std::string, std::string>{{accounts[0], "before"}}));
    EXPECT_EQ(mail.title, "Mail");
    EXPECT_EQ(everything(store), before);
    EXPECT_EQ(everything(reopen()), before);
}

} // namespace
} // namespace vorlane::testing
