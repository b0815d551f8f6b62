// SPDX-License-Identifier: GPL-3.0-or-later
// `vorlane-cli import` and `vorlane-cli list`, run as a user runs them, on a real vault and the
// real keyring.

#include "ImportFixtures.h"
#include "VaultFixture.h"
#include "importer/VorlaneCsvReader.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace vorlane::testing {
namespace {

class ImportCliTest : public VaultFixture {
protected:
    CommandRun cli(const std::string& arguments) {
        return runCommand(std::string(VORLANE_CLI) + " --vault " + shellWord(m_path) + " " +
                          arguments);
    }

    std::vector<nlohmann::json> listed(const std::string& arguments) {
        const CommandRun run = cli("--json list " + arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        std::vector<nlohmann::json> objects;
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);) {
            objects.push_back(nlohmann::json::parse(line));
        }
        return objects;
    }
};

TEST_F(ImportCliTest, ImportsReportsAndListsWhatCameIn) {
    const std::string file = shellWord(fixturePath("keepassxc-keepass-export.xml"));
    const CommandRun first = cli("--json import " + file + " --organization Private");
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(
        nlohmann::json::parse(first.out),
        nlohmann::json::parse(R"({"created":6,"organizations":3,"duplicates":0,"rejected":[]})"));

    const CommandRun again = cli("import " + file + " --organization Private --dry-run");
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(again.out.substr(0, again.out.find('\n')),
              "0 services would be imported into 0 organizations, 6 duplicates would be skipped, "
              "0 rejected");

    const auto acme = listed("--organization 'ACME corp'");
    ASSERT_EQ(acme.size(), 3u);
    const nlohmann::json& vps = acme[1]; // by title: Acme Mailbox, Acme VPS, Shop WordPress
    EXPECT_EQ(vps["title"], "Acme VPS");
    EXPECT_EQ(vps["loginURL"], "https://vps1.acme.test:8443/");
    EXPECT_EQ(vps["hostname"], "vps1.acme.test");
    EXPECT_EQ(vps["tags"], nlohmann::json::parse(R"(["production","web"])"));
    EXPECT_EQ(vps["expirationDate"], "2027-03-15T12:00:00Z");
    EXPECT_EQ(vps["createdAt"], "2024-02-01T09:00:00Z");
    EXPECT_EQ(vps["port"], nullptr);
    EXPECT_TRUE(vps["notes"].get<std::string>().ends_with("Datacenter: FSN1"));
    EXPECT_TRUE(vps["secretKeychainID"].get<std::string>().starts_with("vorlane.secret."));
    EXPECT_TRUE(vps["apiKeyKeychainID"].get<std::string>().starts_with("vorlane.apikey."));
    EXPECT_EQ(listed("--organization Private").size(), 1u); // the router, in no group
    EXPECT_EQ(listed("").size(), 6u);

    DataStore& store = open();
    const ServiceRecord* stored = store.service(*Uuid::fromString(vps["id"].get<std::string>()));
    ASSERT_TRUE(stored);
    EXPECT_EQ(store.getPassword(*stored), "vps-secret-1");
}

TEST_F(ImportCliTest, FilesThatCannotBeReadExitWithTheReason) {
    const CommandRun encrypted =
        cli("import " + shellWord(fixturePath("bitwarden-encrypted.json")));
    EXPECT_EQ(encrypted.status, 1);
    EXPECT_EQ(encrypted.err, "vorlane-cli import: This Bitwarden export is encrypted. Export it "
                             "again as JSON (unencrypted) or import it into another manager "
                             "first.\n");
    EXPECT_FALSE(std::filesystem::exists(m_path)); // nothing written for a file not read

    const CommandRun forced =
        cli("import " + shellWord(fixturePath("lastpass.csv")) + " --format bitwarden-csv");
    EXPECT_EQ(forced.status, 1);
    EXPECT_NE(forced.err.find("line 1 is not Bitwarden's header"), std::string::npos);
    EXPECT_EQ(cli("import x.csv --format excel").status, 2);

    const CommandRun rejected = cli("--json import " + shellWord(fixturePath("vorlane.csv")));
    EXPECT_EQ(rejected.status, 0) << rejected.err; // rejected rows do not fail the file
    EXPECT_EQ(nlohmann::json::parse(rejected.out)["rejected"][0]["line"], 4);

    TempFolder folder;
    const std::string templatePath = folder.path() + "/template.csv";
    ASSERT_EQ(cli("import --template " + shellWord(templatePath)).status, 0);
    EXPECT_EQ(readFile(templatePath), VorlaneCsvReader::templateText());
}

} // namespace
} // namespace vorlane::testing
