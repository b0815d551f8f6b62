// SPDX-License-Identifier: GPL-3.0-or-later
// The inventory read back by the spreadsheet import's own reader gives the vault's records, on a
// real vault; `vorlane-cli list --csv` prints the same text.

#include "backup/InventoryCsv.h"

#include "RunCommand.h"
#include "VaultFixture.h"
#include "importer/CsvTable.h"
#include "importer/VorlaneCsvReader.h"
#include "model/Organization.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vorlane::testing {
namespace {

class InventoryCsvTest : public VaultFixture {
protected:
    InventoryCsvTest() { open(); }

    // A service with every field the inventory carries set to something a CSV writer can get
    // wrong: separators, quotes, line breaks, non-ASCII text, dates on either side of a
    // daylight-saving change (the calendar is Berlin's), decimals no binary number holds.
    ServiceRecord& fullService(Organization* owner) {
        ServiceRecord service = ServiceRecord::created(m_clock.now());
        service.title = "Mail \"prod\", Zürich";
        service.setServiceType(ServiceType::mailbox);
        service.provider = "Posteo, e.K.";
        service.hostname = "mail.example.ch";
        service.domain = "example.ch";
        service.ipAddress = "2001:db8::1";
        service.port = 993;
        service.loginURL = "https://example.ch/login?a=1,b=\"2\"";
        service.username = "jürg";
        service.emailAddress = "jürg@example.ch";
        service.sshKeyReference = "~/.ssh/id_ed25519";
        service.purchaseDate = utc(2024, 1, 14, 23); // 15 January, midnight in Berlin (CET)
        service.renewalDate = utc(2026, 5, 31, 22);  // 1 June, midnight in Berlin (CEST)
        service.expirationDate = utc(2026, 10, 24, 22);
        service.setBillingCycle(BillingCycle::quarterly);
        service.monthlyCost = Decimal::fromString("0.10").value();
        service.yearlyCost = Decimal::fromString("1234567.89").value();
        service.autoRenew = true;
        service.tags = {"client", "日本語", "vip"};
        service.notes = " first line, \"quoted\"\r\nsecond line\nthird = 1+1";
        service.setRiskLevel(RiskLevel::critical);
        service.setStatus(ServiceStatus::warning);
        service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        return m_store->insert(std::move(service), owner);
    }

    static std::vector<ImportedEntry> readBack(const std::string& csv) {
        auto table = CsvTable::read(csv);
        EXPECT_TRUE(table.ok()) << (table.ok() ? "" : table.error());
        auto entries = VorlaneCsvReader::read(table.value());
        EXPECT_TRUE(entries.ok()) << (entries.ok() ? "" : entries.error());
        return entries.ok() ? entries.value() : std::vector<ImportedEntry>{};
    }

    // Every field the inventory carries, compared one by one so that a failure names it.
    static void expectSame(const ServiceRecord& original, const ImportedEntry& entry) {
        SCOPED_TRACE(original.title);
        EXPECT_EQ(entry.rejection, "");
        const ServiceRecord& read = entry.record;
        EXPECT_EQ(entry.organization.value_or(""),
                  original.organization ? original.organization->name : "");
        EXPECT_EQ(read.title, original.title);
        EXPECT_EQ(read.serviceTypeRaw, original.serviceTypeRaw);
        EXPECT_EQ(read.provider, original.provider);
        EXPECT_EQ(read.hostname, original.hostname);
        EXPECT_EQ(read.domain, original.domain);
        EXPECT_EQ(read.ipAddress, original.ipAddress);
        EXPECT_EQ(read.port, original.port);
        EXPECT_EQ(read.loginURL, original.loginURL);
        EXPECT_EQ(read.username, original.username);
        EXPECT_EQ(read.emailAddress, original.emailAddress);
        EXPECT_EQ(read.sshKeyReference, original.sshKeyReference);
        EXPECT_EQ(read.purchaseDate, original.purchaseDate);
        EXPECT_EQ(read.renewalDate, original.renewalDate);
        EXPECT_EQ(read.expirationDate, original.expirationDate);
        EXPECT_EQ(read.billingCycleRaw, original.billingCycleRaw);
        EXPECT_EQ(read.monthlyCost.toString(), original.monthlyCost.toString());
        EXPECT_EQ(read.yearlyCost.toString(), original.yearlyCost.toString());
        EXPECT_EQ(read.autoRenew, original.autoRenew);
        EXPECT_EQ(read.tags, original.tags);
        EXPECT_EQ(read.notes, original.notes);
        EXPECT_EQ(read.riskLevelRaw, original.riskLevelRaw);
        EXPECT_EQ(read.statusRaw, original.statusRaw);
        EXPECT_EQ(read.isArchived, original.isArchived);
        EXPECT_EQ(entry.password, "");
        EXPECT_EQ(entry.apiKey, "");
    }
};

TEST_F(InventoryCsvTest, ReadBackByTheSpreadsheetImportItGivesEveryServiceWithItsFields) {
    Organization& client = addOrganization("Müller & Söhne, \"GmbH\"");
    ServiceRecord& full = fullService(&client);
    ASSERT_TRUE(m_store->setPassword("hunter2-not-in-the-file", full));
    ServiceRecord& archived = addService(client, "Old FTP");
    change(archived, [](ServiceRecord& s) {
        s.isArchived = true;
        s.setStatus(ServiceStatus::archived);
        s.setServiceType(ServiceType::ftpAccess);
    });
    // A service of no organization, and one that has nothing but its title.
    ServiceRecord loose = ServiceRecord::created(m_clock.now());
    loose.title = "Loose end";
    loose.port = 0;
    ServiceRecord& orphan = m_store->insert(std::move(loose), nullptr);
    ServiceRecord& bare = addService(addOrganization("Acme"), "Bare");

    const std::string csv = InventoryCsv::text(*m_store, m_calendar);
    EXPECT_EQ(csv.find("hunter2-not-in-the-file"), std::string::npos) << "a secret in the file";
    EXPECT_EQ(csv.substr(0, csv.find("\r\n")),
              "organization,title,serviceType,provider,hostname,domain,ipAddress,port,loginURL,"
              "username,emailAddress,sshKeyReference,purchaseDate,renewalDate,expirationDate,"
              "billingCycle,monthlyCost,yearlyCost,autoRenew,riskLevel,status,tags,notes");

    const std::vector<ImportedEntry> entries = readBack(csv);
    ASSERT_EQ(entries.size(), 4u) << csv;
    // By title, archived ones among them.
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const ServiceRecord* original =
            std::vector<ServiceRecord*>{&bare, &orphan, &full, &archived}[i];
        expectSame(*original, entries[i]);
    }
}

TEST_F(InventoryCsvTest, AnUnknownStoredKindIsWrittenAsWhatTheVaultShowsSoTheImportTakesTheLine) {
    change(addService(addOrganization("Acme"), "Odd"), [](ServiceRecord& s) {
        s.serviceTypeRaw = "quantumVault";
        s.billingCycleRaw = "fortnightly";
    });
    const std::vector<ImportedEntry> entries = readBack(InventoryCsv::text(*m_store, m_calendar));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].rejection, "");
    EXPECT_TRUE(entries[0].hasServiceType) << "the kind was left out instead";
    EXPECT_EQ(entries[0].record.title, "Odd");
}

TEST_F(InventoryCsvTest, TheFileIsNamedAfterTheUsersDay) {
    // 23:30 UTC on 20 March is already the 21st in Berlin.
    EXPECT_EQ(InventoryCsv::fileName(utc(2025, 3, 20, 23, 30), m_calendar),
              "Vorlane-Inventory-2025-03-21.csv");
}

TEST_F(InventoryCsvTest, ListCsvOnTheCommandLinePrintsTheInventory) {
    ServiceRecord& full = fullService(&addOrganization("Zürich AG"));
    addService(addOrganization("Acme"), "Bare");
    ASSERT_TRUE(m_store->save());

    const CommandRun run =
        runCommand(std::string(VORLANE_CLI) + " --vault " + shellWord(m_path) + " list --csv");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, InventoryCsv::text(*m_store, m_calendar));
    const std::vector<ImportedEntry> entries = readBack(run.out);
    ASSERT_EQ(entries.size(), 2u);
    expectSame(full, entries[1]);

    const CommandRun both = runCommand(std::string(VORLANE_CLI) + " --vault " + shellWord(m_path) +
                                       " --json list --csv");
    EXPECT_EQ(both.status, 2) << "--csv and --json cannot both be the output";
    EXPECT_EQ(both.out, "");
}

} // namespace
} // namespace vorlane::testing
