// SPDX-License-Identifier: GPL-3.0-or-later
// The readers of each export format on the committed fixtures (the KeePass ones made by
// keepassxc-cli, see tests/import/make-fixtures.sh) and on damaged and hostile input.

#include "ImportFixtures.h"
#include "importer/BitwardenJsonReader.h"
#include "importer/CsvReader.h"
#include "importer/ImportDate.h"
#include "importer/ImportReader.h"
#include "importer/VorlaneCsvReader.h"
#include "util/IsoDate.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vorlane::testing {
namespace {

const ImportedEntry& titled(const std::vector<ImportedEntry>& entries, const std::string& title) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const ImportedEntry& e) {
        return e.record.title == title;
    });
    if (found == entries.end()) {
        ADD_FAILURE() << "no entry titled " << title;
        std::abort();
    }
    return *found;
}

std::vector<std::string> titles(const std::vector<ImportedEntry>& entries) {
    std::vector<std::string> result;
    for (const ImportedEntry& entry : entries) {
        result.push_back(entry.record.title);
    }
    return result;
}

std::string iso(const std::optional<Instant>& instant) {
    return instant ? IsoDate::utc(*instant) : "none";
}

TEST(CsvReaderTest, QuotedFieldsHoldCommasQuotesAndLineBreaks) {
    const auto rows = CsvReader::read("a,\"b,c\",\"say \"\"hi\"\"\"\r\n"
                                      "\r\n"
                                      "\"two\nlines\",,x\n"
                                      "last,row");
    ASSERT_TRUE(rows) << rows.error();
    ASSERT_EQ(rows.value().size(), 3u);
    EXPECT_EQ(rows.value()[0].fields, (std::vector<std::string>{"a", "b,c", "say \"hi\""}));
    EXPECT_EQ(rows.value()[1].line, 3u);
    EXPECT_EQ(rows.value()[1].fields, (std::vector<std::string>{"two\nlines", "", "x"}));
    EXPECT_EQ(rows.value()[2].line, 5u); // the quoted line break counts
    EXPECT_EQ(rows.value()[2].fields, (std::vector<std::string>{"last", "row"}));

    const auto open = CsvReader::read("a,b\n1,\"never closed\n2,3\n");
    ASSERT_FALSE(open);
    EXPECT_EQ(open.error(), "line 2: a quoted field is never closed (a missing \")");
}

TEST(ImportDateTest, BothKeePassEncodingsAndIsoVariants) {
    // 2024-02-01T09:00:00Z as KDBX 4 writes it, and as text.
    EXPECT_EQ(iso(ImportDate::keepass("kFRN3Q4AAAA=")), "2024-02-01T09:00:00Z");
    EXPECT_EQ(iso(ImportDate::keepass("2024-02-01T09:00:00Z")), "2024-02-01T09:00:00Z");
    EXPECT_EQ(iso(ImportDate::iso8601("2023-04-05T06:07:08.123Z")), "2023-04-05T06:07:08.123Z");
    EXPECT_EQ(iso(ImportDate::iso8601("2023-04-05T08:07:08+02:00")), "2023-04-05T06:07:08Z");
    EXPECT_EQ(iso(ImportDate::iso8601("2023-04-05 06:07:08")), "2023-04-05T06:07:08Z");
    for (const char* bad : {"2023-02-30T00:00:00Z", "2023-04-05T25:00:00Z", "yesterday",
                            "2023-04-05T06:07", "2023-04-05T06:07:08+2", "AAAA"}) {
        EXPECT_FALSE(ImportDate::keepass(bad)) << bad;
    }
}

TEST(KeePassXmlReaderTest, KeePassXcExportMapsGroupsTimesTagsAndAttributes) {
    const auto file = ImportReader::read(fixture("keepassxc-keepass-export.xml"));
    ASSERT_TRUE(file) << file.error();
    EXPECT_EQ(file.value().format, ImportFormat::keepassXml);
    const auto& entries = file.value().entries;
    // History versions and the recycle bin's entry are not there. KeePassXC writes a group's
    // own entries before its subgroups.
    EXPECT_EQ(titles(entries),
              (std::vector<std::string>{"Router at home", "Acme VPS", "Acme Mailbox",
                                        "Shop WordPress", "Webmail Grüße 📧", "Datenbank"}));

    const ImportedEntry& vps = titled(entries, "Acme VPS");
    EXPECT_EQ(vps.groups, (std::vector<std::string>{"Acme Corp"}));
    EXPECT_EQ(vps.record.username, "root");
    EXPECT_EQ(vps.password, "vps-secret-1");
    EXPECT_EQ(vps.record.loginURL, "https://vps1.acme.test:8443/");
    EXPECT_EQ(vps.record.tags, (std::vector<std::string>{"production", "web"}));
    EXPECT_EQ(iso(vps.record.expirationDate), "2027-03-15T12:00:00Z");
    EXPECT_EQ(iso(vps.createdAt), "2024-02-01T09:00:00Z");
    EXPECT_EQ(iso(vps.updatedAt), "2025-06-01T10:30:00Z");
    // KeePassXC writes the attributes in name order.
    ASSERT_EQ(vps.fields.size(), 3u);
    EXPECT_EQ(vps.fields[0].name, "Backup PIN");
    EXPECT_TRUE(vps.fields[0].isHidden);
    EXPECT_EQ(vps.fields[1].name, "Datacenter");
    EXPECT_FALSE(vps.fields[1].isHidden);
    EXPECT_EQ(vps.fields[2].value, "RC-1111-2222");
    EXPECT_TRUE(vps.fields[2].isHidden);

    EXPECT_EQ(titled(entries, "Shop WordPress").groups,
              (std::vector<std::string>{"Acme Corp", "Websites"}));
    const ImportedEntry& webmail = titled(entries, "Webmail Grüße 📧");
    EXPECT_EQ(webmail.password, "päss-wörd-4");
    EXPECT_NE(webmail.totp.find("otpauth://totp/"), std::string::npos);
    EXPECT_TRUE(webmail.fields.empty()); // the one-time code is not a custom attribute
    // ExpiryTime is set but Expires is False.
    EXPECT_FALSE(webmail.record.expirationDate);
    EXPECT_TRUE(titled(entries, "Router at home").groups.empty());
}

TEST(KeePassXmlReaderTest, Kdbx4DatesReadAsTheSameInstantsAsTheirTextExport) {
    // keepassxc-cli read the source's base64 dates and wrote the export's ISO text.
    const auto source = ImportReader::read(fixture("keepass-source.xml"));
    const auto exported = ImportReader::read(fixture("keepassxc-keepass-export.xml"));
    ASSERT_TRUE(source) << source.error();
    ASSERT_TRUE(exported) << exported.error();
    ASSERT_EQ(source.value().entries.size(), exported.value().entries.size());
    for (const ImportedEntry& a : source.value().entries) {
        const ImportedEntry& b = titled(exported.value().entries, a.record.title);
        EXPECT_EQ(iso(a.createdAt), iso(b.createdAt)) << a.record.title;
        EXPECT_EQ(iso(a.updatedAt), iso(b.updatedAt)) << a.record.title;
        EXPECT_EQ(iso(a.passwordChangedAt), iso(b.passwordChangedAt)) << a.record.title;
        EXPECT_EQ(iso(a.record.expirationDate), iso(b.record.expirationDate)) << a.record.title;
        EXPECT_TRUE(a.createdAt) << a.record.title;
    }
}

std::string keepassFile(const std::string& entryStrings, const std::string& before = "") {
    return before + "<KeePassFile><Root><Group><UUID>AA==</UUID><Name>Root</Name>\n<Entry>" +
           entryStrings + "</Entry></Group></Root></KeePassFile>";
}

TEST(KeePassXmlReaderTest, ProtectedValuesRejectTheirEntryAndBadDatesNameTheElement) {
    const auto file = ImportReader::read(
        keepassFile("<String><Key>Title</Key><Value>Secret box</Value></String>"
                    "<String><Key>Password</Key><Value Protected=\"True\">q83vEjRW</Value></String>"
                    "</Entry>\n<Entry><String><Key>Title</Key><Value>Dated</Value></String>"
                    "<Times><CreationTime>31.12.2024</CreationTime></Times>"));
    ASSERT_TRUE(file) << file.error();
    const auto& entries = file.value().entries;
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].rejection,
              "line 2: its Password is encrypted by the database (Protected=\"True\"); export the "
              "database again as KeePass XML");
    EXPECT_EQ(entries[1].rejection, "line 3: CreationTime \"31.12.2024\" is not a date");
}

TEST(KeePassXmlReaderTest, DamagedOrHostileXmlIsRefusedWithItsLine) {
    std::string truncated = fixture("keepassxc-keepass-export.xml");
    truncated.resize(truncated.size() / 2);
    const auto cut = ImportReader::read(truncated);
    ASSERT_FALSE(cut);
    EXPECT_NE(cut.error().find("the file ends too early"), std::string::npos) << cut.error();
    EXPECT_TRUE(cut.error().starts_with("line ")) << cut.error();

    // A billion laughs: refused at the DTD, before any entity could expand.
    std::string laughs = "<?xml version=\"1.0\"?>\n<!DOCTYPE KeePassFile [\n<!ENTITY a \"ha\">";
    for (char c = 'b'; c <= 'k'; ++c) {
        std::string tenfold;
        for (int i = 0; i < 10; ++i) {
            tenfold += std::string("&") + static_cast<char>(c - 1) + ";";
        }
        laughs += std::string("<!ENTITY ") + c + " \"" + tenfold + "\">";
    }
    laughs += "]>\n" + keepassFile("<String><Key>Title</Key><Value>&k;</Value></String>");
    const auto refused = ImportReader::read(laughs, ImportFormat::keepassXml);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(),
              "line 2, column 23: the file declares a DTD, which a KeePass export never has");

    const auto external =
        ImportReader::read("<!DOCTYPE KeePassFile SYSTEM \"file:///etc/passwd\">" + keepassFile(""),
                           ImportFormat::keepassXml);
    ASSERT_FALSE(external);

    const auto other = ImportReader::read("<html><body/></html>", ImportFormat::keepassXml);
    ASSERT_FALSE(other);
    EXPECT_EQ(other.error(),
              "line 1, column 7: this XML is not a KeePass export: its root element is <html>");
}

TEST(CsvFormatsTest, KeePassXcCsvTakesTheGroupPathBelowTheRoot) {
    const auto file = ImportReader::read(fixture("keepassxc-export.csv"));
    ASSERT_TRUE(file) << file.error();
    EXPECT_EQ(file.value().format, ImportFormat::keepassxcCsv);
    const auto& entries = file.value().entries;
    const ImportedEntry& shop = titled(entries, "Shop WordPress");
    EXPECT_EQ(shop.groups, (std::vector<std::string>{"Acme Corp", "Websites"}));
    EXPECT_EQ(shop.password, "wp-secret-3");
    EXPECT_EQ(iso(shop.createdAt), "2024-02-01T09:00:00Z");
    EXPECT_TRUE(titled(entries, "Router at home").groups.empty());
    EXPECT_FALSE(titled(entries, "Webmail Grüße 📧").totp.empty());

    const auto older = ImportReader::read("Group,Title,Username,Password,URL,Notes\n"
                                          "Root/Beta,Mail,bob,pw,https://mail.beta.test,\n");
    ASSERT_TRUE(older) << older.error();
    EXPECT_EQ(older.value().format, ImportFormat::keepassxcCsv);
    EXPECT_EQ(older.value().entries.at(0).groups, (std::vector<std::string>{"Beta"}));
}

TEST(CsvFormatsTest, BitwardenCsvReadsFoldersFieldsAndRejectsOtherTypes) {
    const auto file = ImportReader::read(fixture("bitwarden.csv"));
    ASSERT_TRUE(file) << file.error();
    EXPECT_EQ(file.value().format, ImportFormat::bitwardenCsv);
    const auto& entries = file.value().entries;
    ASSERT_EQ(entries.size(), 4u);
    const ImportedEntry& cloud = entries[0];
    EXPECT_EQ(cloud.groups, (std::vector<std::string>{"Hetzner Kunde"}));
    EXPECT_EQ(cloud.record.notes, "Project \"web\", Falkenstein");
    EXPECT_EQ(cloud.password, "pa,ss\"word");
    ASSERT_EQ(cloud.fields.size(), 2u);
    EXPECT_EQ(cloud.fields[1].name, "Region");
    EXPECT_EQ(cloud.fields[1].value, "fsn1");
    EXPECT_EQ(entries[1].record.notes, "Line one\r\nLine two");
    EXPECT_EQ(entries[2].record.loginURL, "http://10.0.0.1/");
    EXPECT_EQ(entries[3].rejection,
              "line 7: a Bitwarden item of type \"card\" is not a login or a secure note");

    const auto organization = ImportReader::read(
        "collections,type,name,notes,fields,reprompt,login_uri,login_username,login_password,"
        "login_totp\n\"Client A,Client B\",login,Panel,,,0,https://a.test,u,p,\n");
    ASSERT_TRUE(organization) << organization.error();
    EXPECT_EQ(organization.value().entries.at(0).groups, (std::vector<std::string>{"Client A"}));
}

TEST(CsvFormatsTest, OnePasswordAndLastPass) {
    const auto onePassword = ImportReader::read(fixture("1password.csv"));
    ASSERT_TRUE(onePassword) << onePassword.error();
    EXPECT_EQ(onePassword.value().format, ImportFormat::onePasswordCsv);
    const auto& items = onePassword.value().entries;
    EXPECT_EQ(items[0].record.tags, (std::vector<std::string>{"dev", "code"}));
    EXPECT_TRUE(items[0].groups.empty());
    EXPECT_TRUE(items[1].record.isArchived);
    EXPECT_EQ(items[2].rejection,
              "line 4 has 10 fields but the header has 9 (a comma in a value that is not quoted?)");

    const auto lastPass = ImportReader::read(fixture("lastpass.csv"));
    ASSERT_TRUE(lastPass) << lastPass.error();
    EXPECT_EQ(lastPass.value().format, ImportFormat::lastPassCsv);
    const auto& sites = lastPass.value().entries;
    EXPECT_EQ(sites[0].groups, (std::vector<std::string>{"Clients", "Acme", "Hosting"}));
    const ImportedEntry& note = sites[1];
    EXPECT_TRUE(note.record.loginURL.empty()); // http://sn marks a secure note
    EXPECT_EQ(note.record.notes, "Door code 1234\nAlarm 9876");
    EXPECT_EQ(sites[2].groups, (std::vector<std::string>{"Beta Ltd"}));

    const auto older = ImportReader::read(fixture("lastpass-no-totp.csv"));
    ASSERT_TRUE(older) << older.error();
    EXPECT_EQ(older.value().format, ImportFormat::lastPassCsv);
    EXPECT_EQ(older.value().entries.at(0).password, "old-pass");
}

TEST(CsvFormatsTest, VorlaneCsvReadsEveryFieldAndRejectsValuesThatDoNotRead) {
    const auto file = ImportReader::read(fixture("vorlane.csv"));
    ASSERT_TRUE(file) << file.error();
    EXPECT_EQ(file.value().format, ImportFormat::vorlaneCsv);
    const auto& entries = file.value().entries;
    ASSERT_EQ(entries.size(), 6u);
    const ImportedEntry& vps = entries[0];
    EXPECT_EQ(vps.organization, "Acme Corp");
    EXPECT_TRUE(vps.hasServiceType);
    EXPECT_EQ(vps.record.serviceType(), ServiceType::vps); // by its display name
    EXPECT_EQ(vps.record.port, 22);
    EXPECT_EQ(vps.record.billingCycle(), BillingCycle::annual);
    EXPECT_EQ(vps.record.yearlyCost.toString(), "119.88");
    EXPECT_TRUE(vps.record.autoRenew);
    EXPECT_EQ(vps.record.riskLevel(), RiskLevel::high);
    EXPECT_EQ(vps.record.tags, (std::vector<std::string>{"prod", "web"}));
    EXPECT_TRUE(vps.record.expirationDate);
    EXPECT_EQ(entries[1].apiKey, "sk_test_123");
    EXPECT_EQ(entries[1].record.monthlyCost.toString(), "25.5");
    EXPECT_EQ(entries[2].rejection, "line 4, serviceType: \"spaceship\" is not a known value");
    EXPECT_EQ(entries[3].rejection,
              "line 5, expirationDate: \"2027-02-30\" is not a date (YYYY-MM-DD)");
    EXPECT_EQ(entries[4].rejection,
              "line 6, monthlyCost: \"12;50\" is not an amount (digits and a \".\", e.g. 12.50)");
    EXPECT_TRUE(entries[5].record.isArchived);
    EXPECT_EQ(entries[5].record.billingCycle(), BillingCycle::oneTime);

    const auto unknown = ImportReader::read("title,passwort\nA,b\n", ImportFormat::vorlaneCsv);
    ASSERT_FALSE(unknown);
    EXPECT_EQ(unknown.error(),
              "line 1, column 2: \"passwort\" is not a field Vorlane knows (see the template)");

    // The template is a header the reader takes whole.
    const auto fromTemplate = ImportReader::read(VorlaneCsvReader::templateText());
    ASSERT_TRUE(fromTemplate) << fromTemplate.error();
    EXPECT_EQ(fromTemplate.value().format, ImportFormat::vorlaneCsv);
    EXPECT_TRUE(fromTemplate.value().entries.empty());
}

TEST(BitwardenJsonReaderTest, ItemsFoldersFieldsAndTheTrash) {
    const auto file = ImportReader::read(fixture("bitwarden.json"));
    ASSERT_TRUE(file) << file.error();
    EXPECT_EQ(file.value().format, ImportFormat::bitwardenJson);
    const auto& entries = file.value().entries;
    // The deleted "Old FTP" is skipped; the card is kept to be reported.
    EXPECT_EQ(titles(entries), (std::vector<std::string>{"Hetzner", "Server notes", "Company Visa",
                                                         "Mailbox without folder"}));
    const ImportedEntry& hetzner = entries[0];
    EXPECT_EQ(hetzner.groups, (std::vector<std::string>{"Hetzner Kunde"}));
    EXPECT_EQ(hetzner.record.loginURL, "https://robot.hetzner.test/login");
    EXPECT_EQ(hetzner.password, "hetzner-pass-1");
    EXPECT_FALSE(hetzner.totp.empty());
    EXPECT_EQ(iso(hetzner.createdAt), "2023-04-05T06:07:08.123Z");
    ASSERT_EQ(hetzner.fields.size(), 5u);
    EXPECT_EQ(hetzner.fields[0].name, "URL"); // the second URI
    EXPECT_TRUE(hetzner.fields[2].isHidden);  // API token
    EXPECT_FALSE(hetzner.fields[4].isHidden); // a boolean field
    EXPECT_EQ(entries[1].groups, (std::vector<std::string>{"Nordlicht GmbH"}));
    EXPECT_EQ(entries[2].rejection, "item 3: a Bitwarden card is not a service");
    EXPECT_TRUE(entries[3].groups.empty());
}

TEST(BitwardenJsonReaderTest, EncryptedAndDamagedExportsAreRefused) {
    const auto encrypted = ImportReader::read(fixture("bitwarden-encrypted.json"));
    ASSERT_FALSE(encrypted);
    EXPECT_EQ(encrypted.error(), BitwardenJsonReader::encryptedMessage);

    const auto cut = ImportReader::read("{\n \"items\": [\n {\"type\": 1,\n");
    ASSERT_FALSE(cut);
    EXPECT_EQ(cut.error(), "line 4: the JSON is damaged or cut short");

    // Members of the wrong JSON type are read as absent, not trusted.
    const auto odd = ImportReader::read(
        R"({"encrypted":"yes","items":[{"type":"1","name":7,"login":[],"fields":[{"type":"1"}]}]})");
    ASSERT_TRUE(odd) << odd.error();
    EXPECT_EQ(odd.value().entries.at(0).record.title, "7");
    EXPECT_FALSE(odd.value().entries.at(0).rejection.empty());
}

TEST(ImportReaderTest, DetectionAndFilesThatCannotBeRead) {
    EXPECT_EQ(ImportReader::detect("\xEF\xBB\xBF  \n<?xml version=\"1.0\"?><KeePassFile>"),
              ImportFormat::keepassXml);
    EXPECT_EQ(ImportReader::detect("url,username,password,totp,extra,name,grouping,fav\n"),
              ImportFormat::lastPassCsv);
    EXPECT_FALSE(ImportReader::detect("name;value\n"));

    const auto binary = ImportReader::read(std::string("PK\x03\x04\0\0", 6));
    ASSERT_FALSE(binary);
    EXPECT_EQ(binary.error(), "this is a binary file, not an export (a zero byte on line 1)");
    const auto latin1 = ImportReader::read("title,notes\nA,ok\nB,caf\xE9\n");
    ASSERT_FALSE(latin1);
    EXPECT_EQ(latin1.error(), "line 3 is not UTF-8 text: export the file again as UTF-8");
    const auto headerless = ImportReader::read("just,some,values\n1,2,3\n");
    ASSERT_FALSE(headerless);
    EXPECT_TRUE(headerless.error().starts_with("this is not an export Vorlane can read"));
    const auto forced = ImportReader::read("a,b\n", ImportFormat::bitwardenCsv);
    ASSERT_FALSE(forced);
    EXPECT_TRUE(forced.error().starts_with("line 1 is not Bitwarden's header")) << forced.error();
}

TEST(ImportReaderTest, AFileOverTheCapIsRefusedBeforeItIsRead) {
    TempFolder folder;
    const std::string path = folder.path() + "/huge.csv";
    {
        std::ofstream out(path, std::ios::binary);
        out << "title\n";
        out.seekp(static_cast<std::streamoff>(200) * 1024 * 1024);
        out << "x\n";
    }
    const auto huge = ImportReader::readFile(path);
    ASSERT_FALSE(huge);
    EXPECT_EQ(huge.error(), path + " is 200 MB; an export Vorlane can import is at most 64 MB");
    const auto missing = ImportReader::readFile(folder.path() + "/nothing.csv");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), folder.path() + "/nothing.csv: No such file or directory");
}

} // namespace
} // namespace vorlane::testing
