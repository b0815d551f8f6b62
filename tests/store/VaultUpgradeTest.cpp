// SPDX-License-Identifier: GPL-3.0-or-later
// A vault written by the first release (schema 1.0.0) opens and is upgraded in place, in one
// transaction, only once it has been read and checked whole; what cannot be upgraded is refused
// and left as it was.

#include "VaultFixture.h"

#include <sqlite3.h>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

// The tables exactly as the first release created them, and its marks.
constexpr const char* firstReleaseTables = R"sql(
CREATE TABLE vault_meta (key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL);
CREATE TABLE organizations (
    id TEXT PRIMARY KEY NOT NULL, name TEXT NOT NULL, projectName TEXT NOT NULL,
    contactName TEXT NOT NULL, contactEmail TEXT NOT NULL, contactPhone TEXT NOT NULL,
    website TEXT NOT NULL, notes TEXT NOT NULL, tags TEXT NOT NULL, isActive INTEGER NOT NULL,
    isArchived INTEGER NOT NULL, isFavorite INTEGER NOT NULL, createdAt INTEGER NOT NULL,
    updatedAt INTEGER NOT NULL);
CREATE TABLE organization_logos (
    organizationId TEXT PRIMARY KEY NOT NULL REFERENCES organizations(id) ON DELETE CASCADE,
    data BLOB NOT NULL);
CREATE TABLE services (
    id TEXT PRIMARY KEY NOT NULL,
    organizationId TEXT REFERENCES organizations(id) ON DELETE CASCADE,
    serviceTypeRaw TEXT NOT NULL, title TEXT NOT NULL, provider TEXT NOT NULL,
    hostname TEXT NOT NULL, domain TEXT NOT NULL, ipAddress TEXT NOT NULL, loginURL TEXT NOT NULL,
    username TEXT NOT NULL, emailAddress TEXT NOT NULL, port INTEGER,
    sshKeyReference TEXT NOT NULL, purchaseDate INTEGER, renewalDate INTEGER,
    expirationDate INTEGER, billingCycleRaw TEXT NOT NULL, monthlyCost TEXT NOT NULL,
    yearlyCost TEXT NOT NULL, autoRenew INTEGER NOT NULL, tags TEXT NOT NULL, notes TEXT NOT NULL,
    riskLevelRaw TEXT NOT NULL, statusRaw TEXT NOT NULL, isArchived INTEGER NOT NULL,
    createdAt INTEGER NOT NULL, updatedAt INTEGER NOT NULL, secretKeychainID TEXT NOT NULL,
    apiKeyKeychainID TEXT NOT NULL);
CREATE INDEX services_by_organization ON services(organizationId);
CREATE TABLE shares (
    id TEXT PRIMARY KEY NOT NULL,
    organizationId TEXT REFERENCES organizations(id) ON DELETE CASCADE,
    serviceIDs TEXT NOT NULL, recipientLabel TEXT NOT NULL, notes TEXT NOT NULL,
    includesSecrets INTEGER NOT NULL, redactedFields TEXT NOT NULL, expirationDate INTEGER,
    isRevoked INTEGER NOT NULL, sharedAt INTEGER NOT NULL, shareMethodRaw TEXT NOT NULL);
CREATE INDEX shares_by_organization ON shares(organizationId);
PRAGMA application_id = 1450144364;
INSERT INTO vault_meta VALUES ('schemaVersion', '1.0.0');
PRAGMA journal_mode = WAL;
)sql";

constexpr const char* orgId = "5A0B3C7E-0000-4000-8000-000000000001";
constexpr const char* serviceId = "5A0B3C7E-0000-4000-8000-000000000002";

class VaultUpgradeTest : public VaultFixture {
protected:
    // A first-release vault: one organization with one domain and one share, closed cleanly.
    // `monthlyCost` is the service's stored amount (a damaged one makes a damaged vault).
    void makeFirstReleaseVault(const std::string& monthlyCost = "1.25") {
        std::string error;
        auto created =
            SqliteConnection::open(m_path, SqliteConnection::Mode::readWriteCreate, error);
        ASSERT_TRUE(created) << error;
        SqliteConnection& db = *created;
        ASSERT_TRUE(db.execute(firstReleaseTables)) << db.lastError();
        ASSERT_TRUE(db.execute(
            std::string("INSERT INTO organizations VALUES ('") + orgId +
            "', 'Acme', 'Relaunch', '', '', '', '', '', '[\"vip\"]', 1, 0, 0, 1700000000000, "
            "1700000000000)"));
        ASSERT_TRUE(db.execute(std::string("INSERT INTO services VALUES ('") + serviceId + "', '" +
                               orgId +
                               "', 'domainRegistrar', 'acme.example', 'Gandi', '', "
                               "'acme.example', '', '', '', '', NULL, '', NULL, NULL, "
                               "1767225600000, 'annual', '" +
                               monthlyCost +
                               "', '15', 1, '[]', 'keep', 'low', 'active', 0, 1700000000000, "
                               "1700000000000, 'vorlane.secret.X', '')"))
            << db.lastError();
        ASSERT_TRUE(db.execute(std::string("INSERT INTO shares VALUES ('") +
                               "5A0B3C7E-0000-4000-8000-000000000003', '" + orgId + "', '[\"" +
                               serviceId +
                               "\"]', 'Agency', '', 0, '[]', NULL, 0, 1700000000000, "
                               "'fullEncryptedBundle')"));
    }

    // Every table's columns (type, NOT NULL, default, key), foreign keys and indexes, one line
    // each: what the file holds, whatever the layout of the statements that made it.
    static std::string schemaText(SqliteConnection& db) {
        std::string text;
        for (const char* sql :
             {"SELECT m.name || ' ' || p.name || ' ' || p.type || ' ' || p.\"notnull\" || ' ' || "
              "IFNULL(p.dflt_value, '-') || ' ' || p.pk FROM sqlite_master m "
              "JOIN pragma_table_info(m.name) p WHERE m.type = 'table' ORDER BY m.name, p.cid",
              "SELECT m.name || ' ' || f.\"from\" || ' -> ' || f.\"table\" || '.' || f.\"to\" || "
              "' ' || f.on_delete FROM sqlite_master m JOIN pragma_foreign_key_list(m.name) f "
              "WHERE m.type = 'table' ORDER BY 1",
              "SELECT name || ' on ' || tbl_name FROM sqlite_master WHERE type = 'index' "
              "ORDER BY name"}) {
            auto rows = db.prepare(sql);
            EXPECT_TRUE(rows) << db.lastError();
            while (rows && rows->step() == SqliteStatement::Step::row) {
                text += rows->text(0) + "\n";
            }
        }
        return text;
    }

    std::string storedVersion() {
        SqliteConnection db = raw();
        return db.queryText("SELECT value FROM vault_meta WHERE key = 'schemaVersion'")
            .value_or("none");
    }

    std::string refusal() {
        auto opened = DataStore::open(m_path, m_keychain, m_calendar, m_timers);
        EXPECT_FALSE(opened) << m_path << " opened";
        return opened ? std::string() : opened.error();
    }
};

TEST_F(VaultUpgradeTest, AFirstReleaseVaultOpensUpgradedWithEveryRecordAndItsNewFieldsWork) {
    makeFirstReleaseVault();
    DataStore& store = open();
    const std::optional<Uuid> id = Uuid::fromString(serviceId);
    ServiceRecord* domain = store.service(*id);
    ASSERT_NE(domain, nullptr);
    EXPECT_EQ(domain->title, "acme.example");
    EXPECT_EQ(domain->yearlyCost.toString(), "15");
    EXPECT_EQ(domain->secretKeychainID, "vorlane.secret.X");
    EXPECT_EQ(domain->totpKeychainID, "");
    EXPECT_EQ(domain->passwordChangedAt, std::nullopt);
    ASSERT_NE(domain->organization, nullptr);
    EXPECT_EQ(domain->organization->shareHistory.size(), 1u);
    EXPECT_TRUE(store.fetchPayments(*domain).empty());
    EXPECT_EQ(storedVersion(), "1.1.0") << "upgraded as soon as it was opened";

    // The upgraded file holds the new fields and payments like a new one.
    domain->totpKeychainID = ServiceRecord::makeTOTPKeychainID();
    domain->passwordChangedAt = utc(2025, 1, 2, 3, 4);
    store.noteChanged(*domain);
    PaymentRecord payment;
    payment.id = Uuid::generate();
    payment.datePaid = utc(2025, 3, 1);
    payment.amount = *Decimal::fromString("15.00");
    store.insert(payment, *domain);
    const std::string totp = domain->totpKeychainID;
    DataStore& reopened = reopen();
    domain = reopened.service(*id);
    ASSERT_NE(domain, nullptr);
    EXPECT_EQ(domain->totpKeychainID, totp);
    EXPECT_EQ(domain->passwordChangedAt, utc(2025, 1, 2, 3, 4));
    ASSERT_EQ(reopened.fetchPayments(*domain).size(), 1u);
    EXPECT_EQ(reopened.fetchPayments(*domain)[0]->amount.toString(), "15");
}

TEST_F(VaultUpgradeTest, AnUpgradedFileHasExactlyTheTablesOfANewOne) {
    open();
    m_store.reset();
    SqliteConnection fresh = raw();
    const std::string freshSchema = schemaText(fresh);
    EXPECT_NE(freshSchema.find("payments serviceId -> services.id CASCADE"), std::string::npos)
        << freshSchema;

    const std::string newPath = m_folder + "/old.sqlite";
    m_path = newPath;
    makeFirstReleaseVault();
    open();
    m_store.reset();
    SqliteConnection upgraded = raw();
    EXPECT_EQ(schemaText(upgraded), freshSchema);
    EXPECT_EQ(upgraded.queryText("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(upgraded.queryText("PRAGMA foreign_key_check"), std::nullopt);
}

TEST_F(VaultUpgradeTest, ADamagedFirstReleaseVaultIsRefusedAndNotUpgraded) {
    makeFirstReleaseVault("twelve");
    {
        SqliteConnection db = raw();
        ASSERT_TRUE(db.execute("PRAGMA wal_checkpoint(TRUNCATE)"));
    }
    const std::string before = fileBytes(m_path);
    const std::string error = refusal();
    EXPECT_NE(error.find("is damaged"), std::string::npos) << error;
    EXPECT_EQ(fileBytes(m_path), before);
    EXPECT_EQ(storedVersion(), "1.0.0");
}

TEST_F(VaultUpgradeTest, AFailedUpgradeLeavesTheFileAtItsVersion) {
    makeFirstReleaseVault();
    {
        // Something the upgrade cannot get past: a table of the new schema already there.
        SqliteConnection db = raw();
        ASSERT_TRUE(db.execute("CREATE TABLE payments (x)"));
    }
    const std::string error = refusal();
    EXPECT_NE(error.find("cannot upgrade " + m_path + " from schema 1.0.0"), std::string::npos)
        << error;
    SqliteConnection db = raw();
    EXPECT_EQ(storedVersion(), "1.0.0");
    // The columns added before the failing step were rolled back with it.
    EXPECT_EQ(db.queryInteger("SELECT COUNT(*) FROM pragma_table_info('services') "
                              "WHERE name = 'totpKeychainID'"),
              0);
}

TEST_F(VaultUpgradeTest, NewerAndUnknownOlderSchemasAreRefusedUntouched) {
    makeFirstReleaseVault();
    for (const auto& [version, reason] :
         {std::pair<std::string, std::string>{"1.2.0", "was written by a newer version of "
                                                       "Vorlane (schema 1.2.0); this version "
                                                       "reads schema 1.1.0"},
          {"0.9.0", "has schema 0.9.0, which this version cannot read"}}) {
        {
            SqliteConnection db = raw();
            ASSERT_TRUE(db.execute("UPDATE vault_meta SET value = '" + version + "'"));
            ASSERT_TRUE(db.execute("PRAGMA wal_checkpoint(TRUNCATE)"));
        }
        const std::string before = fileBytes(m_path);
        const std::string error = refusal();
        EXPECT_NE(error.find(reason), std::string::npos) << error;
        EXPECT_EQ(fileBytes(m_path), before);
        EXPECT_EQ(storedVersion(), version);
    }
}

} // namespace
} // namespace vorlane::testing
