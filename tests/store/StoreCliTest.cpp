// SPDX-License-Identifier: GPL-3.0-or-later
// vorlane-cli's store commands, run as a separate process on a real vault and the real keyring:
// what they print must be what the store's queries return.

#include "VaultFixture.h"
#include "util/SystemClock.h"

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <chrono>
#include <sstream>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Titles = std::vector<std::string>;

class StoreCliTest : public VaultFixture {
protected:
    CommandRun cli(const std::string& arguments) {
        return runCommand(std::string(VORLANE_CLI) + " " + arguments);
    }

    // Runs a --json command on the vault and collects one member of every printed line.
    std::vector<std::string> printed(const std::string& arguments, const char* member) {
        std::vector<std::string> values;
        std::istringstream lines(cli("--vault " + shellWord(m_path) + " --json " + arguments).out);
        for (std::string line; std::getline(lines, line);) {
            values.push_back(nlohmann::json::parse(line)[member]);
        }
        return values;
    }
};

TEST_F(StoreCliTest, DemoVaultKeepsSecretsInTheKeyringAndQueriesPrintWhatTheStoreReturns) {
    const CommandRun run = cli("demo " + shellWord(m_path) + " --services 200");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("200 services"), std::string::npos) << run.out;

    DataStore& store = open();
    const auto services = store.fetchAllServices(true);
    ASSERT_EQ(services.size(), 200u);
    const std::string file = fileBytes(m_path);
    for (const ServiceRecord* service : services) {
        const auto password = store.getPassword(*service);
        ASSERT_TRUE(password) << service->title; // the test keyring is reachable
        EXPECT_EQ(file.find(*password), std::string::npos);
    }

    const auto totals =
        nlohmann::json::parse(cli("--vault " + shellWord(m_path) + " --json totals").out);
    EXPECT_EQ(totals["totalActiveServices"], store.totalActiveServices());
    EXPECT_EQ(totals["totalMonthlyCost"], store.totalMonthlyCost().toString());
    EXPECT_EQ(totals["totalYearlyCost"], store.totalYearlyCost().toString());

    std::vector<std::string> expected;
    for (const Organization* organization : store.searchOrganizations("acme")) {
        expected.push_back(organization->id.toString());
    }
    for (const ServiceRecord* service : store.search("acme")) {
        expected.push_back(service->id.toString());
    }
    // The demo's first client is an Acme; the second is not.
    ASSERT_GT(expected.size(), 1u);
    ASSERT_LT(expected.size(), store.fetchAllServices().size());
    EXPECT_EQ(printed("search ACME", "id"), expected);

    // Never over an existing file.
    const CommandRun again = cli("demo " + shellWord(m_path));
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.err.find("already exists"), std::string::npos);
    EXPECT_EQ(fileBytes(m_path), file);
}

TEST_F(StoreCliTest, ExpiringAndExpiredUseTheWallClock) {
    const Instant now = SystemClock().now();
    Organization& owner = open().insert(Organization::created(now));
    for (const auto& [title, offset] :
         std::vector<std::pair<std::string, std::chrono::hours>>{{"in 10 days", 24h * 10},
                                                                 {"tomorrow", 24h},
                                                                 {"last week", -24h * 7},
                                                                 {"yesterday", -24h},
                                                                 {"next year", 24h * 365}}) {
        change(addService(owner, title),
               [&](ServiceRecord& s) { s.expirationDate = now + offset; });
    }
    ASSERT_TRUE(m_store->save());
    m_store.reset();

    EXPECT_EQ(printed("expiring", "title"), (Titles{"tomorrow", "in 10 days"}));
    EXPECT_EQ(printed("expiring --within 3", "title"), (Titles{"tomorrow"}));
    EXPECT_EQ(printed("expired", "title"), (Titles{"last week", "yesterday"}));

    const CommandRun people = cli("--vault " + shellWord(m_path) + " expired");
    EXPECT_NE(people.out.find("yesterday"), std::string::npos);
    EXPECT_EQ(people.out.find('{'), std::string::npos);
}

TEST_F(StoreCliTest, CalendarHoldsEveryServiceNotArchivedWithAnExpirationInCrlfLines) {
    const Instant now = SystemClock().now();
    Organization& owner = open().insert(Organization::created(now));
    std::vector<std::string> listed;
    for (const auto& [title, archived] : std::vector<std::pair<std::string, bool>>{
             {"kept.com", false}, {"also.com", false}, {"archived.com", true}}) {
        ServiceRecord& service = addService(owner, title);
        change(service, [&](ServiceRecord& s) {
            s.expirationDate = now + 24h * 40;
            s.isArchived = archived;
        });
        if (!archived) {
            listed.push_back("UID:" + service.id.toString() + "@vorlane");
        }
    }
    const std::string undated = addService(owner, "undated.com").id.toString();
    ASSERT_TRUE(m_store->save());
    m_store.reset();

    const CommandRun out = cli("--vault " + shellWord(m_path) + " calendar -");
    ASSERT_EQ(out.status, 0) << out.err;
    EXPECT_TRUE(out.out.starts_with("BEGIN:VCALENDAR\r\n")) << out.out;
    std::size_t events = 0;
    for (std::size_t at = out.out.find("BEGIN:VEVENT"); at != std::string::npos;
         at = out.out.find("BEGIN:VEVENT", at + 1)) {
        ++events;
    }
    EXPECT_EQ(events, 2u);
    for (const std::string& uid : listed) {
        EXPECT_NE(out.out.find(uid), std::string::npos) << uid;
    }
    EXPECT_EQ(out.out.find(undated), std::string::npos);
    for (std::size_t at = out.out.find('\n'); at != std::string::npos;
         at = out.out.find('\n', at + 1)) {
        ASSERT_TRUE(at > 0 && out.out[at - 1] == '\r') << "a bare line feed at " << at;
    }

    const std::string file = m_path + ".ics";
    const CommandRun written = cli("--vault " + shellWord(m_path) + " calendar " + shellWord(file));
    ASSERT_EQ(written.status, 0) << written.err;
    struct stat mode {};
    ASSERT_EQ(::stat(file.c_str(), &mode), 0);
    EXPECT_EQ(mode.st_mode & 0777, 0600u);
    EXPECT_NE(fileBytes(file).find(listed.front()), std::string::npos);
}

TEST_F(StoreCliTest, ErrorsGoToStderrWithAStatus) {
    std::ofstream(m_path) << "not a vault";
    const CommandRun refused = cli("--vault " + shellWord(m_path) + " --json totals");
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.out.empty());
    EXPECT_NE(
        refused.err.find("Failed to initialize data store: " + m_path + " is not a Vorlane vault"),
        std::string::npos)
        << refused.err;
    EXPECT_EQ(fileBytes(m_path), "not a vault");

    for (const char* wrong :
         {"expiring --within soon", "expiring --within -1", "search", "expired now", "demo",
          "demo x --services 0", "demo --no-such-option", "calendar a b"}) {
        const CommandRun run = cli("--vault " + shellWord(m_path) + " --json " + wrong);
        EXPECT_EQ(run.status, 2) << wrong;
        EXPECT_FALSE(run.err.empty()) << wrong;
    }
}

} // namespace
} // namespace vorlane::testing
