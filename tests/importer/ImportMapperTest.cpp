// SPDX-License-Identifier: GPL-3.0-or-later
// Where imported entries go and what they become: organizations and the organization rule,
// kinds, hosts from URLs, fields and the secrets that have no place.

#include "importer/ImportMapper.h"

#include "ImportFixtures.h"
#include "importer/ImportReader.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vorlane::testing {
namespace {

std::vector<ImportRow> mapped(const std::string& fixtureName, const ImportMapper::Rule& rule = {}) {
    auto file = ImportReader::read(fixture(fixtureName));
    if (!file) {
        ADD_FAILURE() << file.error();
        return {};
    }
    return ImportMapper::map(std::move(file).value().entries, rule);
}

const ImportRow& titled(const std::vector<ImportRow>& rows, const std::string& title) {
    const auto found = std::find_if(
        rows.begin(), rows.end(), [&](const ImportRow& row) { return row.record.title == title; });
    if (found == rows.end()) {
        ADD_FAILURE() << "no row titled " << title;
        std::abort();
    }
    return *found;
}

TEST(ImportMapperTest, KeePassGroupsKindsHostsAndFields) {
    const auto rows = mapped("keepassxc-keepass-export.xml");
    const ImportRow& vps = titled(rows, "Acme VPS");
    EXPECT_EQ(vps.organization, "Acme Corp");
    // Smart paste's rule: "ssh" in the notes is tried before "vps" in the title.
    EXPECT_EQ(vps.record.serviceType(), ServiceType::sshAccess);
    EXPECT_EQ(vps.record.hostname, "vps1.acme.test");
    EXPECT_EQ(vps.record.domain, "vps1.acme.test");
    EXPECT_EQ(vps.record.loginURL, "https://vps1.acme.test:8443/");
    // A plain attribute goes to the notes; the first hidden one is the API key, the next is
    // reported, and neither is written into the notes.
    EXPECT_EQ(vps.record.notes, "Ubuntu 24.04, ssh root@vps1.acme.test\nDatacenter: FSN1");
    EXPECT_EQ(vps.apiKey, "4711"); // "Backup PIN" comes first
    EXPECT_EQ(vps.notImported, (std::vector<std::string>{
                                   "hidden field 'Recovery code' of 'Acme VPS' not imported"}));
    EXPECT_EQ(vps.password, "vps-secret-1");

    const ImportRow& shop = titled(rows, "Shop WordPress");
    EXPECT_EQ(shop.organization, "Acme Corp");
    EXPECT_EQ(shop.record.tags, (std::vector<std::string>{"Websites"}));
    EXPECT_EQ(shop.record.serviceType(), ServiceType::wordpress);
    EXPECT_EQ(titled(rows, "Acme Mailbox").record.serviceType(), ServiceType::mailbox);
    EXPECT_EQ(titled(rows, "Datenbank").record.serviceType(), ServiceType::database);

    const ImportRow& webmail = titled(rows, "Webmail Grüße 📧");
    EXPECT_EQ(webmail.organization, "Bäckerei Müller");
    EXPECT_EQ(webmail.record.hostname, "webmail.bäckerei.test");
    EXPECT_EQ(webmail.totp,
              "otpauth://totp/Baker?secret=JBSWY3DPEHPK3PXP&issuer=Baker"); // KeePassXC's "otp"
    EXPECT_TRUE(webmail.notImported.empty());
    EXPECT_EQ(webmail.record.notes.find("otpauth"), std::string::npos);

    const ImportRow& router = titled(rows, "Router at home");
    EXPECT_EQ(router.organization, ImportMapper::defaultOrganization);
    EXPECT_EQ(router.record.ipAddress, "192.168.1.1");
    EXPECT_TRUE(router.record.hostname.empty());
}

TEST(ImportMapperTest, TheOrganizationRuleAndEditedRows) {
    auto rows = mapped("lastpass.csv");
    ASSERT_EQ(rows.size(), 4u);
    // LastPass: the first folder is the client, the deeper ones tags.
    EXPECT_EQ(rows[0].organization, "Clients");
    EXPECT_EQ(rows[0].record.tags, (std::vector<std::string>{"Acme", "Hosting"}));
    EXPECT_EQ(rows[0].record.serviceType(), ServiceType::cpanel);
    EXPECT_EQ(rows[3].organization, "Imported");

    rows[1].organization = "Office";
    rows[1].organizationEdited = true;
    ImportMapper::applyRule(rows, {"Everything", /*oneOrganization=*/true});
    EXPECT_EQ(rows[0].organization, "Everything");
    EXPECT_EQ(rows[0].record.tags, (std::vector<std::string>{"Clients", "Acme", "Hosting"}));
    EXPECT_EQ(rows[1].organization, "Office"); // typed by the user: the rule leaves it
    EXPECT_EQ(rows[3].organization, "Everything");

    ImportMapper::applyRule(rows, {"Misc", false});
    EXPECT_EQ(rows[2].organization, "Beta Ltd");
    EXPECT_TRUE(rows[2].record.tags.empty());
    EXPECT_EQ(rows[3].organization, "Misc");
}

TEST(ImportMapperTest, BitwardenFieldsSpreadsheetKindsAndRejections) {
    const auto rows = mapped("bitwarden.json");
    const ImportRow& hetzner = titled(rows, "Hetzner");
    EXPECT_EQ(hetzner.organization, "Hetzner Kunde");
    EXPECT_EQ(hetzner.apiKey, "hz-api-7f3a9c");
    EXPECT_EQ(hetzner.notImported,
              (std::vector<std::string>{"hidden field 'Recovery code' of 'Hetzner' not imported"}));
    EXPECT_EQ(hetzner.totp, "otpauth://totp/Hetzner?secret=JBSWY3DPEHPK3PXP");
    EXPECT_EQ(hetzner.record.notes, "Robot account for the dedicated server\n"
                                    "URL: https://accounts.hetzner.test\n"
                                    "Customer number: K0123456\n"
                                    "2FA enabled: true");
    EXPECT_EQ(hetzner.record.serviceType(), ServiceType::dedicatedServer);
    EXPECT_EQ(titled(rows, "Mailbox without folder").record.hostname, "imap.example.test");
    EXPECT_EQ(titled(rows, "Company Visa").status, ImportRow::Status::rejected);

    const auto sheet = mapped("vorlane.csv");
    EXPECT_EQ(sheet[0].organization, "Acme Corp");
    EXPECT_EQ(sheet[0].record.serviceType(), ServiceType::vps);
    EXPECT_EQ(sheet[0].record.hostname, "vps1.acme.test");
    EXPECT_EQ(sheet[1].record.serviceType(), ServiceType::apiKey); // named, not inferred
    EXPECT_EQ(sheet[2].status, ImportRow::Status::rejected);
    EXPECT_EQ(sheet[2].reason, "line 4, serviceType: \"spaceship\" is not a known value");
}

TEST(ImportMapperTest, UntitledEntriesAndOneTimeCodesThatDoNotRead) {
    auto file = ImportReader::read("url,username,password,totp,extra,name,grouping,fav\n"
                                   "https://ftp.example.test/,u,p,123456,,,,0\n");
    ASSERT_TRUE(file) << file.error();
    const auto rows = ImportMapper::map(std::move(file).value().entries, {});
    EXPECT_EQ(rows.at(0).record.serviceType(), ServiceType::ftpAccess);
    // Named as smart paste names a credential without a title.
    EXPECT_EQ(rows.at(0).record.title, "FTP / SFTP — ftp.example.test");
    EXPECT_TRUE(rows.at(0).totp.empty());
    EXPECT_EQ(rows.at(0).notImported,
              (std::vector<std::string>{"one-time code of 'FTP / SFTP — ftp.example.test' not "
                                        "imported: Not a valid one-time code secret"}));
}

} // namespace
} // namespace vorlane::testing
