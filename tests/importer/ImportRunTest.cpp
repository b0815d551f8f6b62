// SPDX-License-Identifier: GPL-3.0-or-later
// Importing into a real vault file with the real keyring (run-with-keyring.sh): secrets only in
// the keyring, duplicates, organizations reused, the passwords' dates, and a cancelled import or
// one the locked keyring stops left consistent.

#include "importer/ImportRun.h"

#include "ImportFixtures.h"
#include "TestKeyring.h"
#include "VaultFixture.h"
#include "importer/ImportDate.h"
#include "importer/ImportMapper.h"
#include "importer/ImportReader.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace vorlane::testing {
namespace {

class ImportRunTest : public VaultFixture {
protected:
    ImportRunTest() { open(); }

    std::vector<ImportRow> preview(const std::string& fixtureName,
                                   const ImportMapper::Rule& rule = {}) {
        auto file = ImportReader::read(fixture(fixtureName));
        if (!file) {
            ADD_FAILURE() << file.error();
            return {};
        }
        auto rows = ImportMapper::map(std::move(file).value().entries, rule);
        ImportMapper::markDuplicates(rows, *m_store);
        return rows;
    }

    ImportReport importAll(std::vector<ImportRow> rows) {
        ImportRun run(*m_store, m_clock.now(), std::move(rows));
        while (run.step(7)) {
        }
        EXPECT_TRUE(run.finished());
        return run.report();
    }

    ServiceRecord* serviceTitled(const std::string& title) {
        for (ServiceRecord* service : m_store->fetchAllServices(true)) {
            if (service->title == title) {
                return service;
            }
        }
        return nullptr;
    }
};

TEST_F(ImportRunTest, ThreeHundredKeePassXcEntriesWithEveryGroupExpiryAndPassword) {
    auto rows = preview("keepassxc-keepass-300-export.xml");
    ASSERT_EQ(rows.size(), 300u);
    // Reading and previewing touch nothing.
    EXPECT_EQ(m_store->countServices(true), 0u);
    EXPECT_FALSE(m_store->hasUnsavedChanges());

    const ImportReport report = importAll(std::move(rows));
    EXPECT_EQ(report.summary(),
              "300 services imported into 25 organizations, 0 duplicates skipped, 0 rejected");
    EXPECT_EQ(report.organizationsCreated, 25u);
    EXPECT_FALSE(m_store->hasUnsavedChanges()); // saved as it went

    DataStore& store = reopen();
    ASSERT_EQ(store.fetchOrganizations(true).size(), 25u);
    const std::string file = fileBytes(m_path) + fileBytes(m_path + "-wal");
    std::size_t withExpiry = 0;
    for (const ServiceRecord* service : store.fetchAllServices(true)) {
        const int number = std::stoi(service->title.substr(8)) - 1; // "Service 001"
        const int client = number / 12 + 1;
        EXPECT_EQ(service->organization->name,
                  (client < 10 ? "Client 0" : "Client ") + std::to_string(client));
        const auto password = store.getPassword(*service);
        ASSERT_TRUE(password) << service->title;
        const std::string zeros = number < 10 ? "00" : number < 100 ? "0" : "";
        EXPECT_EQ(*password, "secret-" + zeros + std::to_string(number) + "-Xy!");
        EXPECT_EQ(file.find(*password), std::string::npos) << service->title;
        EXPECT_EQ(service->expirationDate.has_value(), number % 4 == 0) << service->title;
        withExpiry += service->expirationDate.has_value();
    }
    EXPECT_EQ(withExpiry, 75u);
}

TEST_F(ImportRunTest, DuplicatesAgainstTheVaultAndTheFileAndReusedOrganizations) {
    Organization& acme = addOrganization("ACME CORP");
    ServiceRecord& existing = addService(acme, "acme vps");
    existing.username = "root";
    existing.hostname = "VPS1.acme.test";
    m_store->noteChanged(existing);
    ASSERT_TRUE(m_store->save());

    auto rows = preview("keepassxc-keepass-export.xml");
    auto twice = preview("keepassxc-keepass-export.xml");
    rows.insert(rows.end(), twice.begin(), twice.end());
    ImportMapper::markDuplicates(rows, *m_store);
    const auto duplicates = std::count_if(rows.begin(), rows.end(), [](const ImportRow& row) {
        return row.status == ImportRow::Status::duplicate;
    });
    EXPECT_EQ(duplicates, 7); // the vault's Acme VPS, then all six again
    ASSERT_EQ(rows[1].record.title, "Acme VPS");
    EXPECT_EQ(rows[1].status, ImportRow::Status::duplicate);
    rows[1].keepDuplicate = true;

    const ImportReport report = importAll(std::move(rows));
    EXPECT_EQ(report.summary(),
              "6 services imported into 3 organizations, 6 duplicates skipped, 0 rejected");
    EXPECT_EQ(report.organizationsCreated, 2u); // Bäckerei Müller and Imported; Acme reused
    EXPECT_EQ(acme.services.size(), 4u);
    EXPECT_EQ(report.notImported, (std::vector<std::string>{
                                      "hidden field 'Recovery code' of 'Acme VPS' not imported"}));
    const ServiceRecord* webmail = serviceTitled("Webmail Grüße 📧");
    ASSERT_TRUE(webmail);
    EXPECT_EQ(m_store->getTOTPSecret(*webmail),
              "otpauth://totp/Baker?secret=JBSWY3DPEHPK3PXP&issuer=Baker");
    EXPECT_EQ(m_store->getPassword(*webmail), "päss-wörd-4");
    const ServiceRecord* vps = serviceTitled("Acme VPS");
    ASSERT_TRUE(vps);
    EXPECT_EQ(m_store->getAPIKey(*vps), "4711");
    EXPECT_EQ(vps->createdAt, ImportDate::iso8601("2024-02-01T09:00:00Z"));
}

TEST_F(ImportRunTest, ACancelledImportKeepsWhatItWroteWithItsSecrets) {
    auto rows = preview("keepassxc-keepass-300-export.xml");
    ImportRun run(*m_store, m_clock.now(), std::move(rows));
    ASSERT_TRUE(run.step(10));
    ASSERT_TRUE(run.step(10));
    run.cancel();
    EXPECT_TRUE(run.finished());
    EXPECT_FALSE(run.step(10));
    EXPECT_EQ(run.report().summary(), "20 services imported into 2 organizations, 0 duplicates "
                                      "skipped, 0 rejected; cancelled, 280 entries not imported");

    DataStore& store = reopen();
    const auto services = store.fetchAllServices(true);
    ASSERT_EQ(services.size(), 20u);
    for (const ServiceRecord* service : services) {
        EXPECT_TRUE(store.getPassword(*service)) << service->title;
    }
    // Organizations are made with their first service: none is left empty.
    EXPECT_EQ(store.fetchOrganizations(true).size(), 2u);
}

// The desktop locks the keyring while an import runs: the row it refuses and every one after it
// are left out, and what came in before is saved whole, each service with its secrets and no
// secret without its service.
TEST_F(ImportRunTest, AKeyringLockedHalfWayStopsTheImportWithNothingHalfSaved) {
    auto rows = preview("keepassxc-keepass-300-export.xml");
    ImportRun run(*m_store, m_clock.now(), std::move(rows));
    ASSERT_TRUE(run.step(10));
    ASSERT_TRUE(run.step(10));
    lockDefaultCollection();
    EXPECT_FALSE(run.step(10));
    EXPECT_TRUE(run.finished());
    EXPECT_FALSE(run.step(10));
    EXPECT_EQ(run.done(), 20u);
    EXPECT_EQ(run.report().summary(), "20 services imported into 2 organizations, 0 duplicates "
                                      "skipped, 0 rejected; stopped, 280 entries not imported");
    EXPECT_NE(run.report().failure.find("'Service 021'"), std::string::npos)
        << run.report().failure;
    EXPECT_EQ(vaultItemCount(), 20u) << "no secret of the refused row is left behind";

    unlockDefaultCollection();
    DataStore& store = reopen();
    const auto services = store.fetchAllServices(true);
    ASSERT_EQ(services.size(), 20u);
    for (const ServiceRecord* service : services) {
        const int number = std::stoi(service->title.substr(8)) - 1; // "Service 001"
        EXPECT_LT(number, 20) << service->title;
        const std::string zeros = number < 10 ? "00" : "0";
        EXPECT_EQ(store.getPassword(*service), "secret-" + zeros + std::to_string(number) + "-Xy!")
            << service->title;
    }
    EXPECT_EQ(store.fetchOrganizations(true).size(), 2u);

    // Unlocked, the rest of the file comes in without the 20 already there.
    auto again = preview("keepassxc-keepass-300-export.xml");
    const ImportReport rest = importAll(std::move(again));
    EXPECT_EQ(rest.created, 280u);
    EXPECT_EQ(rest.duplicatesSkipped, 20u);
    EXPECT_EQ(vaultItemCount(), 300u);
}

// A password keeps the age the source knows: the last version in a KeePass history that already
// had it, Bitwarden's password revision, else the entry's last change; a source without dates
// gets the moment of the import, and a service without a password no date at all.
TEST_F(ImportRunTest, PasswordsAreDatedFromTheSourceWhereItKnowsAndWhenImportedWhereNot) {
    const auto csvRows = preview("keepassxc-export.csv");
    const auto csvVps = std::find_if(csvRows.begin(), csvRows.end(), [](const ImportRow& row) {
        return row.record.title == "Acme VPS";
    });
    ASSERT_NE(csvVps, csvRows.end());
    EXPECT_EQ(csvVps->passwordChangedAt, ImportDate::iso8601("2025-06-01T10:30:00Z"))
        << "KeePassXC's Last Modified column";

    m_clock.advance(std::chrono::hours(1));
    importAll(preview("keepassxc-keepass-export.xml"));
    importAll(preview("bitwarden.json"));
    importAll(preview("1password.csv"));
    const Instant imported = m_clock.now();
    reopen();
    const std::pair<const char*, std::optional<Instant>> expected[] = {
        // Only the notes changed after the password was replaced in September 2024.
        {"Acme Mailbox", ImportDate::iso8601("2024-09-10T08:00:00Z")},
        // Its history holds an older password: replaced with the entry's last change.
        {"Acme VPS", ImportDate::iso8601("2025-06-01T10:30:00Z")},
        {"Router at home", ImportDate::iso8601("2025-06-01T10:30:00Z")}, // no history
        {"Hetzner", ImportDate::iso8601("2024-02-20T10:00:00Z")},
        {"Mailbox without folder", ImportDate::iso8601("2024-03-03T03:03:03Z")},
        {"Server notes", std::nullopt}, // a secure note has no password
        {"GitHub", imported},
    };
    for (const auto& [title, changedAt] : expected) {
        const ServiceRecord* service = serviceTitled(title);
        ASSERT_NE(service, nullptr) << title;
        EXPECT_EQ(service->passwordChangedAt, changedAt) << title;
    }
}

TEST_F(ImportRunTest, RejectedRowsAreReportedAndSourceDatesKept) {
    auto rows = preview("vorlane.csv");
    const ImportReport report = importAll(std::move(rows));
    EXPECT_EQ(report.summary(),
              "3 services imported into 2 organizations, 0 duplicates skipped, 3 rejected");
    ASSERT_EQ(report.rejected.size(), 3u);
    EXPECT_EQ(report.rejected[1].line, 5u);
    EXPECT_EQ(report.rejected[1].title, "Bad Date");
    const ServiceRecord* stripe = serviceTitled("Stripe");
    ASSERT_TRUE(stripe);
    EXPECT_EQ(stripe->organization->name, "Acme Corp"); // "acme corp" in the file
    EXPECT_EQ(m_store->getAPIKey(*stripe), "sk_test_123");
    EXPECT_TRUE(stripe->secretKeychainID.empty());
    EXPECT_EQ(stripe->createdAt, m_clock.now());
}

} // namespace
} // namespace vorlane::testing
