// SPDX-License-Identifier: GPL-3.0-or-later
// What reaches the vault file, and when: every field round trip, only changed rows written,
// failed saves kept for later, autosave, cascades, logos apart, the file's own settings.

#include "VaultFixture.h"

#include <sys/stat.h>

#include <chrono>
#include <tuple>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

class DataStorePersistenceTest : public VaultFixture {};

std::int64_t count(SqliteConnection& db, const std::string& sql) {
    return db.queryInteger(sql).value_or(-1);
}

// Every stored field of a record, to compare a record with its reloaded copy in one go.
auto fields(const Organization& o) {
    return std::tie(o.id, o.name, o.projectName, o.contactName, o.contactEmail, o.contactPhone,
                    o.website, o.notes, o.tags, o.isActive, o.isArchived, o.isFavorite, o.createdAt,
                    o.updatedAt);
}

auto fields(const ServiceRecord& s) {
    return std::tie(s.id, s.serviceTypeRaw, s.title, s.provider, s.hostname, s.domain, s.ipAddress,
                    s.loginURL, s.username, s.emailAddress, s.port, s.sshKeyReference,
                    s.purchaseDate, s.renewalDate, s.expirationDate, s.billingCycleRaw,
                    s.monthlyCost, s.yearlyCost, s.autoRenew, s.tags, s.notes, s.riskLevelRaw,
                    s.statusRaw, s.isArchived, s.createdAt, s.updatedAt, s.secretKeychainID,
                    s.apiKeyKeychainID, s.totpKeychainID, s.passwordChangedAt);
}

auto fields(const ShareRecord& h) {
    return std::tie(h.id, h.serviceIDs, h.recipientLabel, h.notes, h.includesSecrets,
                    h.redactedFields, h.expirationDate, h.isRevoked, h.sharedAt, h.shareMethodRaw);
}

TEST_F(DataStorePersistenceTest, EveryFieldSurvivesReopening) {
    DataStore& store = open();
    Organization organization = Organization::created(utc(2024, 1, 2, 3, 4));
    organization.name = "Acme Ltd";
    organization.projectName = "Relaunch";
    organization.contactName = "Anna";
    organization.contactEmail = "anna@acme.example";
    organization.contactPhone = "+49 30 123";
    organization.website = "https://acme.example";
    organization.notes = "Line one\nLine two \"quoted\"";
    organization.tags = {"vip", "eu, west", "ünïcode"};
    organization.isActive = false;
    organization.isFavorite = true;
    organization.updatedAt = utc(2024, 5, 6, 7, 8) + 999ms;
    const Uuid organizationId = store.insert(organization).id;

    ServiceRecord service = ServiceRecord::created(utc(2024, 2, 3));
    service.setServiceType(ServiceType::sshAccess);
    service.title = "Bastion";
    service.provider = "Hetzner";
    service.hostname = "bastion.acme.example";
    service.domain = "acme.example";
    service.ipAddress = "2001:db8::1";
    service.loginURL = "https://console.example/login?x=1&y=2";
    service.username = "root";
    service.emailAddress = "ops@acme.example";
    service.port = 2222;
    service.sshKeyReference = "~/.ssh/id_ed25519";
    service.purchaseDate = utc(2023, 1, 1);
    service.renewalDate = utc(2026, 1, 1);
    service.expirationDate = utc(2026, 1, 31, 23, 59);
    service.setBillingCycle(BillingCycle::triennial);
    service.monthlyCost = *Decimal::fromString("0.1");
    service.yearlyCost = *Decimal::fromString("1234567890.123456789");
    service.autoRenew = true;
    service.tags = {"prod"};
    service.notes = "Jump host";
    service.riskLevelRaw = "notARiskLevel";
    service.setStatus(ServiceStatus::warning);
    service.isArchived = true;
    service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    service.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
    service.totpKeychainID = ServiceRecord::makeTOTPKeychainID();
    service.passwordChangedAt = utc(2025, 7, 8, 9, 10) + 1ms;
    Organization* owner = store.organization(organizationId);
    store.insert(service, *owner);
    ServiceRecord undated = ServiceRecord::created(utc(2024, 2, 3));
    undated.title = "Undated";
    store.insert(undated, *owner);

    ShareRecord share;
    share.id = Uuid::generate();
    share.serviceIDs = {service.id, undated.id};
    share.recipientLabel = "New agency";
    share.notes = "Handover";
    share.includesSecrets = true;
    share.redactedFields = {"notes", "costs"};
    share.expirationDate = utc(2025, 12, 24);
    share.isRevoked = true;
    share.sharedAt = utc(2025, 3, 1, 9, 30);
    share.shareMethodRaw = ShareMethod(ShareMethod::fullEncryptedBundle).rawValue();
    store.insert(share, *owner);

    DataStore& reopened = reopen();
    Organization* loaded = reopened.organization(organizationId);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(fields(*loaded), fields(organization));
    ASSERT_EQ(loaded->services.size(), 2u);
    EXPECT_EQ(fields(*loaded->services[0]), fields(service)); // relationship order kept
    EXPECT_EQ(fields(*loaded->services[1]), fields(undated));
    EXPECT_EQ(loaded->services[0]->organization, loaded);
    // Exact decimals, and unknown raw values kept as they are.
    EXPECT_EQ(loaded->services[0]->yearlyCost.toString(), "1234567890.123456789");
    EXPECT_EQ(loaded->services[0]->riskLevelRaw, "notARiskLevel");
    ASSERT_EQ(loaded->shareHistory.size(), 1u);
    EXPECT_EQ(fields(*loaded->shareHistory[0]), fields(share));
    EXPECT_EQ(loaded->shareHistory[0]->organization, loaded);
}

TEST_F(DataStorePersistenceTest, PaymentsRoundTripNewestFirstAndGoWithTheirService) {
    DataStore& store = open();
    Organization& owner = addOrganization("Acme");
    ServiceRecord& domain = addService(owner, "acme.example");
    ServiceRecord& hosting = addService(owner, "Hosting");
    const auto pay = [&](ServiceRecord& service, Instant paid, const char* amount) -> Uuid {
        PaymentRecord payment;
        payment.id = Uuid::generate();
        payment.datePaid = paid;
        payment.periodFrom = paid;
        payment.periodTo = paid + std::chrono::days(364);
        payment.amount = *Decimal::fromString(amount);
        payment.note = std::string("paid ") + amount;
        return store.insert(payment, service).id;
    };
    const Uuid older = pay(domain, utc(2024, 3, 1), "14.99");
    const Uuid newer = pay(domain, utc(2025, 3, 1), "15.000000000000000001");
    const Uuid sameDay = pay(domain, utc(2025, 3, 1), "0.5");
    pay(hosting, utc(2025, 1, 1), "120");
    const Uuid domainId = domain.id;
    const Uuid hostingId = hosting.id;

    DataStore& reopened = reopen();
    ServiceRecord* loaded = reopened.service(domainId);
    ASSERT_NE(loaded, nullptr);
    std::vector<PaymentRecord*> payments = reopened.fetchPayments(*loaded);
    ASSERT_EQ(payments.size(), 3u);
    EXPECT_EQ(payments[0]->id, sameDay) << "the later recorded first on the same day";
    EXPECT_EQ(payments[1]->id, newer);
    EXPECT_EQ(payments[2]->id, older);
    EXPECT_EQ(payments[1]->amount.toString(), "15.000000000000000001");
    EXPECT_EQ(payments[1]->note, "paid 15.000000000000000001");
    EXPECT_EQ(payments[1]->periodFrom, utc(2025, 3, 1));
    EXPECT_EQ(payments[1]->periodTo, utc(2025, 3, 1) + std::chrono::days(364));
    EXPECT_EQ(payments[1]->service, loaded);

    // An edit and a deletion reach the file.
    payments[1]->amount = *Decimal::fromString("16.5");
    reopened.noteChanged(*payments[1]);
    reopened.deletePayment(*payments[0]);
    DataStore& third = reopen();
    loaded = third.service(domainId);
    payments = third.fetchPayments(*loaded);
    ASSERT_EQ(payments.size(), 2u);
    EXPECT_EQ(payments[0]->amount.toString(), "16.5");
    EXPECT_EQ(payments[1]->id, older);

    // Deleting the service deletes its payments, in memory and in the file; others stay.
    third.deleteService(*loaded);
    SqliteConnection db = raw();
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM payments"), 1);
    DataStore& fourth = open();
    EXPECT_EQ(fourth.fetchPayments(*fourth.service(hostingId)).size(), 1u);
    fourth.deleteOrganization(*fourth.service(hostingId)->organization);
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM payments"), 0);
}

TEST_F(DataStorePersistenceTest, APaymentOfAServiceDeletedBeforeTheSaveIsNeverWritten) {
    DataStore& store = open();
    ServiceRecord& service = addService(addOrganization("Acme"), "Short-lived");
    PaymentRecord payment;
    payment.id = Uuid::generate();
    payment.amount = Decimal(3);
    store.insert(payment, service);
    store.deleteService(service); // saves: the payment must not reach the file without its service
    EXPECT_FALSE(store.hasUnsavedChanges());
    SqliteConnection db = raw();
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM payments"), 0);
}

TEST_F(DataStorePersistenceTest, SaveWritesOnlyWhatChanged) {
    DataStore& store = open();
    Organization& owner = addOrganization("Owner");
    ServiceRecord& edited = addService(owner, "Edited");
    addService(owner, "Untouched");
    ASSERT_TRUE(store.save());
    EXPECT_FALSE(store.hasUnsavedChanges());

    // Another writer changes the untouched row; a save of the edited row must not undo that.
    SqliteConnection db = raw();
    ASSERT_TRUE(db.execute("UPDATE services SET notes = 'from elsewhere' WHERE title = "
                           "'Untouched'"));
    edited.notes = "from the store";
    store.noteChanged(edited);
    EXPECT_TRUE(store.hasUnsavedChanges());
    ASSERT_TRUE(store.save());
    EXPECT_EQ(db.queryText("SELECT notes FROM services WHERE title = 'Untouched'"),
              "from elsewhere");
    EXPECT_EQ(db.queryText("SELECT notes FROM services WHERE title = 'Edited'"), "from the store");
}

TEST_F(DataStorePersistenceTest, FailedSaveIsReportedAndRetriedLater) {
    DataStore& store = open();
    Organization& owner = addOrganization("Owner");
    ServiceRecord& service = addService(owner, "Service");
    ASSERT_TRUE(store.save());

    SqliteConnection db = raw();
    ASSERT_TRUE(db.execute("CREATE TRIGGER refuse BEFORE UPDATE ON services "
                           "BEGIN SELECT RAISE(ABORT, 'the disk said no'); END"));
    service.notes = "must not be lost";
    store.noteChanged(service);
    Organization& another = addOrganization("Added in the same save");
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(store.save());
    const std::string printed = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed, "DataStore save error: the disk said no\n");
    EXPECT_TRUE(store.hasUnsavedChanges());
    // The transaction was all or nothing: the organization added with it is not there either.
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM organizations"), 1);

    ASSERT_TRUE(db.execute("DROP TRIGGER refuse"));
    ASSERT_TRUE(store.save());
    const Uuid anotherId = another.id;
    DataStore& reopened = open();
    EXPECT_EQ(reopened.fetchAllServices().at(0)->notes, "must not be lost");
    EXPECT_NE(reopened.organization(anotherId), nullptr);
}

TEST_F(DataStorePersistenceTest, AutosaveWaitsForChangesToSettle) {
    DataStore& store = open();
    SqliteConnection db = raw();
    Organization& owner = addOrganization("Owner");
    m_timers.advance(800ms);
    owner.notes = "typed a bit more";
    store.noteChanged(owner);
    m_timers.advance(800ms);
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM organizations"), 0);
    m_timers.advance(200ms);
    EXPECT_EQ(db.queryText("SELECT notes FROM organizations"), "typed a bit more");
    EXPECT_FALSE(store.hasUnsavedChanges());
    EXPECT_EQ(m_timers.pendingCount(), 0u);

    // An explicit save cancels the pending autosave.
    owner.notes = "saved by hand";
    store.noteChanged(owner);
    ASSERT_TRUE(store.save());
    EXPECT_EQ(m_timers.pendingCount(), 0u);
}

TEST_F(DataStorePersistenceTest, ClosingSavesPendingChanges) {
    open();
    const Uuid id = addOrganization("Unsaved at close").id;
    DataStore& reopened = open(); // closes the first store without an explicit save
    EXPECT_NE(reopened.organization(id), nullptr);
}

TEST_F(DataStorePersistenceTest, DeletingAnOrganizationCascadesInTheFile) {
    DataStore& store = open();
    Organization& doomed = addOrganization("Doomed");
    Organization& kept = addOrganization("Kept");
    addService(doomed, "One");
    ServiceRecord& moved = addService(kept, "Moved in later");
    addService(kept, "Kept service");
    ShareRecord share;
    share.id = Uuid::generate();
    share.sharedAt = m_clock.now();
    store.insert(share, doomed);
    store.setLogo(doomed, std::vector<std::uint8_t>{1, 2, 3});
    ASSERT_TRUE(store.save());

    // Moved but not yet saved: the file still has it under "Kept".
    store.moveService(moved, doomed);
    store.deleteOrganization(doomed);
    EXPECT_FALSE(store.hasUnsavedChanges());
    ASSERT_EQ(store.fetchOrganizations().size(), 1u);
    EXPECT_EQ(store.fetchOrganizations()[0]->name, "Kept");

    SqliteConnection db = raw();
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM organizations"), 1);
    EXPECT_EQ(db.queryText("SELECT group_concat(title) FROM services"), "Kept service");
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM shares"), 0);
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM organization_logos"), 0);
}

TEST_F(DataStorePersistenceTest, LogosLiveApartAndAreReadOnlyWhenAsked) {
    DataStore& store = open();
    Organization& withLogo = addOrganization("With logo");
    Organization& without = addOrganization("Without");
    const std::vector<std::uint8_t> png{0x89, 'P', 'N', 'G', 0, 255};
    store.setLogo(withLogo, png);
    const Uuid withId = withLogo.id;
    const Uuid withoutId = without.id;

    DataStore& reopened = reopen();
    Organization& loaded = *reopened.organization(withId);
    EXPECT_FALSE(loaded.logoData); // not read at open
    EXPECT_EQ(reopened.logo(loaded), png);
    EXPECT_FALSE(reopened.logo(*reopened.organization(withoutId)));

    // Editing another field of an organization whose logo was never read keeps the logo.
    Organization& notRead = *reopen().organization(withId);
    notRead.notes = "edited";
    m_store->noteChanged(notRead);
    DataStore& again = reopen();
    Organization& check = *again.organization(withId);
    EXPECT_EQ(again.logo(check), png);
    again.setLogo(check, std::nullopt);
    DataStore& cleared = reopen();
    EXPECT_FALSE(cleared.logo(*cleared.organization(withId)));
    SqliteConnection db = raw();
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM organization_logos"), 0);
}

TEST_F(DataStorePersistenceTest, FileSettingsPermissionsAndVersion) {
    m_path = m_folder + "/nested/deeper/vault.sqlite";
    open();
    addOrganization("Owner");
    ASSERT_TRUE(m_store->save());

    struct stat info {};
    ASSERT_EQ(::stat(m_path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    ASSERT_EQ(::stat((m_folder + "/nested/deeper").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    ASSERT_EQ(::stat((m_folder + "/nested").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    SqliteConnection db = raw();
    EXPECT_EQ(db.queryText("SELECT value FROM vault_meta WHERE key = 'schemaVersion'"), "1.1.0");
    EXPECT_EQ(db.queryText("PRAGMA journal_mode"), "wal");
    EXPECT_EQ(db.queryText("PRAGMA integrity_check"), "ok");
    // The file's own rule: removing an organization row removes its services.
    ASSERT_TRUE(db.execute("PRAGMA foreign_keys = ON; DELETE FROM organizations"));
    EXPECT_EQ(count(db, "SELECT COUNT(*) FROM services"), 0);
}

} // namespace
} // namespace vorlane::testing
