// SPDX-License-Identifier: GPL-3.0-or-later
// Taking a vault's contents for a backup: every record with its owner's identity and every
// secret from the real keyring, what the keyring lacks listed, and no backup at all when the
// keyring cannot be read.

#include "backup/BackupSnapshot.h"

#include "RandomVault.h"
#include "TestKeyring.h"
#include "VaultFixture.h"

namespace vorlane::testing {
namespace {

class BackupSnapshotTest : public VaultFixture {};

TEST_F(BackupSnapshotTest, HoldsEveryRecordWithItsOwnerAndEverySecretAndListsTheMissingOnes) {
    DataStore& store = open();
    RandomVault random(7);
    const std::map<std::string, std::string> stored = random.fill(store, 6, 4);
    // A record whose password item was deleted behind the vault's back.
    ServiceRecord& orphaned = addService(addOrganization("Gone Secrets"), "Lost password");
    orphaned.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    store.noteChanged(orphaned);
    const std::string lostAccount = orphaned.secretKeychainID;
    // Closed and opened again: logos are then only in the file, and must still be in the backup.
    DataStore& reopened = reopen();

    const std::optional<BackupContents> contents = BackupSnapshot::take(reopened, m_clock.now());
    ASSERT_TRUE(contents.has_value());
    EXPECT_EQ(contents->createdAt, m_clock.now());
    EXPECT_EQ(contents->schemaVersion, "1.1.0");
    EXPECT_EQ(contents->secrets, stored);

    std::vector<std::string> missing;
    for (const std::string& account : accountsOf(reopened)) {
        if (!stored.contains(account)) {
            missing.push_back(account);
        }
    }
    std::sort(missing.begin(), missing.end());
    ASSERT_FALSE(missing.empty());
    EXPECT_EQ(contents->missingSecrets, missing);
    EXPECT_TRUE(std::binary_search(missing.begin(), missing.end(), lostAccount));

    ASSERT_EQ(contents->organizations.size(), reopened.fetchOrganizations(true).size());
    std::size_t logos = 0;
    for (const Organization& organization : contents->organizations) {
        Organization* original = reopened.organization(organization.id);
        ASSERT_NE(original, nullptr);
        EXPECT_EQ(organization.logoData, reopened.logo(*original));
        logos += organization.logoData ? 1 : 0;
        EXPECT_EQ(organization.name, original->name);
        EXPECT_EQ(organization.isArchived, original->isArchived);
        EXPECT_TRUE(organization.services.empty());
        EXPECT_TRUE(organization.shareHistory.empty());
    }
    EXPECT_GT(logos, 0u);

    ASSERT_EQ(contents->services.size(), reopened.countServices(true));
    std::size_t archived = 0;
    std::size_t withoutOrganization = 0;
    for (const BackedUpService& service : contents->services) {
        const ServiceRecord* original = reopened.service(service.record.id);
        ASSERT_NE(original, nullptr);
        EXPECT_EQ(service.record.organization, nullptr);
        EXPECT_EQ(service.organizationId, original->organization
                                              ? std::optional(original->organization->id)
                                              : std::nullopt);
        EXPECT_EQ(service.record.title, original->title);
        EXPECT_EQ(service.record.secretKeychainID, original->secretKeychainID);
        archived += service.record.isArchived ? 1 : 0;
        withoutOrganization += service.organizationId ? 0 : 1;
    }
    EXPECT_GT(archived, 0u);
    EXPECT_EQ(withoutOrganization, 3u);

    std::size_t shares = 0;
    for (const Organization* organization : reopened.fetchOrganizations(true)) {
        shares += organization->shareHistory.size();
    }
    ASSERT_GT(shares, 0u);
    EXPECT_EQ(contents->shares.size(), shares);
    for (const BackedUpShare& share : contents->shares) {
        const Organization* owner = reopened.organization(share.organizationId);
        ASSERT_NE(owner, nullptr);
        EXPECT_EQ(std::count_if(owner->shareHistory.begin(), owner->shareHistory.end(),
                                [&](const ShareRecord* s) { return s->id == share.record.id; }),
                  1);
    }

    std::size_t payments = 0;
    for (const BackedUpPayment& payment : contents->payments) {
        const ServiceRecord* owner = reopened.service(payment.serviceId);
        ASSERT_NE(owner, nullptr);
        const auto list = reopened.fetchPayments(*owner);
        EXPECT_EQ(std::count_if(list.begin(), list.end(),
                                [&](const PaymentRecord* p) {
                                    return p->id == payment.record.id &&
                                           p->amount == payment.record.amount;
                                }),
                  1);
        ++payments;
    }
    std::size_t vaultPayments = 0;
    for (const ServiceRecord* service : reopened.fetchAllServices(true)) {
        vaultPayments += reopened.fetchPayments(*service).size();
    }
    ASSERT_GT(vaultPayments, 0u);
    EXPECT_EQ(payments, vaultPayments);
}

TEST_F(BackupSnapshotTest, ALockedKeyringGivesNoBackupRatherThanOneWithoutSecrets) {
    DataStore& store = open();
    ServiceRecord& service = addService(addOrganization("Acme"), "Mail");
    service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    ASSERT_TRUE(store.setPassword("s3cret", service));
    ASSERT_TRUE(BackupSnapshot::take(store, m_clock.now()).has_value());

    lockDefaultCollection();
    EXPECT_FALSE(BackupSnapshot::take(store, m_clock.now()).has_value());
}

} // namespace
} // namespace vorlane::testing
