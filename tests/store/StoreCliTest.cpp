// vorlane-cli's store commands, run as a separate process on a real vault and the real keyring:
// what they print must be what the store's queries return.

#include "VaultFixture.h"
#include "util/SystemClock.h"

#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <sstream>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

class StoreCliTest : public VaultFixture {
protected:
    CliRun cli(const std::string& arguments) {
        const std::string errPath = m_folder + "/stderr.txt";
        const std::string command = std::string(VORLANE_CLI) + " " + arguments + " 2>" + errPath;
        CliRun run;
        FILE* pipe = ::popen(command.c_str(), "r");
        char buffer[4096];
        std::size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
            run.out.append(buffer, got);
        }
        const int status = ::pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.err = fileBytes(errPath);
        return run;
    }

    static std::vector<nlohmann::json> jsonLines(const std::string& text) {
        std::vector<nlohmann::json> lines;
        std::istringstream in(text);
        std::string line;
        while (std::getline(in, line)) {
            lines.push_back(nlohmann::json::parse(line));
        }
        return lines;
    }

    std::string vaultOption() const { return "--vault '" + m_path + "' --json "; }
};

TEST_F(StoreCliTest, DemoCreatesAVaultWithSecretsOnlyInTheKeyring) {
    const CliRun run = cli("demo '" + m_path + "' --services 150");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("150 services"), std::string::npos) << run.out;

    DataStore& store = open();
    const auto services = store.fetchAllServices(true);
    ASSERT_EQ(services.size(), 150u);
    EXPECT_GE(store.fetchOrganizations(true).size(), 1u);
    const std::string file = fileBytes(m_path);
    for (const ServiceRecord* service : services) {
        const auto password = store.getPassword(*service);
        ASSERT_TRUE(password) << service->title; // the test keyring is reachable
        EXPECT_EQ(file.find(*password), std::string::npos);
    }
    // Never over an existing file.
    const std::string before = fileBytes(m_path);
    const CliRun again = cli("demo '" + m_path + "'");
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.err.find("already exists"), std::string::npos);
    EXPECT_EQ(fileBytes(m_path), before);
}

TEST_F(StoreCliTest, PrintsWhatTheQueriesReturn) {
    ASSERT_EQ(cli("demo '" + m_path + "' --services 200").status, 0);
    DataStore& store = open();

    const auto totals = jsonLines(cli(vaultOption() + "totals").out);
    ASSERT_EQ(totals.size(), 1u);
    EXPECT_EQ(totals[0]["totalActiveServices"], store.totalActiveServices());
    EXPECT_EQ(totals[0]["totalMonthlyCost"], store.totalMonthlyCost().toString());
    EXPECT_EQ(totals[0]["totalYearlyCost"], store.totalYearlyCost().toString());

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
    std::vector<std::string> printed;
    for (const auto& line : jsonLines(cli(vaultOption() + "search ACME").out)) {
        printed.push_back(line["id"]);
    }
    EXPECT_EQ(printed, expected);
}

TEST_F(StoreCliTest, ExpiringAndExpiredUseTheWallClock) {
    const Instant now = SystemClock().now();
    DataStore& store = open();
    Organization& owner = addOrganization("Owner");
    for (const auto& [title, offset] :
         std::vector<std::pair<std::string, std::chrono::hours>>{{"in 10 days", 24h * 10},
                                                                 {"tomorrow", 24h},
                                                                 {"last week", -24h * 7},
                                                                 {"yesterday", -24h},
                                                                 {"next year", 24h * 365}}) {
        ServiceRecord& service = addService(owner, title);
        service.expirationDate = now + offset;
        store.noteChanged(service);
    }
    ASSERT_TRUE(store.save());
    m_store.reset();

    const auto titlesOf = [&](const std::string& arguments) {
        std::vector<std::string> titles;
        for (const auto& line : jsonLines(cli(vaultOption() + arguments).out)) {
            titles.push_back(line["title"]);
        }
        return titles;
    };
    EXPECT_EQ(titlesOf("expiring"), (std::vector<std::string>{"tomorrow", "in 10 days"}));
    EXPECT_EQ(titlesOf("expiring --within 3"), (std::vector<std::string>{"tomorrow"}));
    EXPECT_EQ(titlesOf("expired"), (std::vector<std::string>{"last week", "yesterday"}));

    const CliRun people = cli("--vault '" + m_path + "' expired");
    EXPECT_NE(people.out.find("yesterday"), std::string::npos);
    EXPECT_EQ(people.out.find('{'), std::string::npos);
}

TEST_F(StoreCliTest, ErrorsGoToStderrWithAStatus) {
    std::ofstream(m_path) << "not a vault";
    const CliRun refused = cli(vaultOption() + "totals");
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.out.empty());
    EXPECT_NE(
        refused.err.find("Failed to initialize data store: " + m_path + " is not a Vorlane vault"),
        std::string::npos)
        << refused.err;
    EXPECT_EQ(fileBytes(m_path), "not a vault");

    for (const char* wrong : {"expiring --within soon", "expiring --within -1", "search",
                              "expired now", "demo", "demo x --services 0"}) {
        const CliRun run = cli(vaultOption() + wrong);
        EXPECT_EQ(run.status, 2) << wrong;
        EXPECT_FALSE(run.err.empty()) << wrong;
    }
}

} // namespace
} // namespace vorlane::testing
