// SPDX-License-Identifier: GPL-3.0-or-later
// `vorlane-cli parse-paste`, run as a user would: text on stdin, JSON on stdout.

#include "RunCommand.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using vorlane::testing::CommandRun;

// Runs the command with `input` on stdin in the given time zone and an American locale.
CommandRun parsePaste(const std::string& input, const std::string& zone = "America/New_York",
                      const std::string& arguments = "") {
    const std::filesystem::path file = std::filesystem::temp_directory_path() /
                                       ("vorlane-paste-" + std::to_string(::getpid()) + ".txt");
    std::ofstream(file, std::ios::binary) << input;
    const CommandRun run =
        vorlane::testing::runCommand("env TZ=" + zone + " LANG=en_US.UTF-8 LC_ALL=en_US.UTF-8 " +
                                         VORLANE_CLI + " parse-paste " + arguments,
                                     file.string());
    std::filesystem::remove(file);
    return run;
}

TEST(ParsePasteCliTest, PrintsEveryFieldAsOneJsonObject) {
    const CommandRun run = parsePaste("Server IP: 203.0.113.42\r\nRoot password: Vx7#qLm2pT  \r\n"
                                      "Renews 2026-03-15 on the VPS\r\n");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    ASSERT_EQ(run.out.back(), '\n');
    ASSERT_EQ(run.out.find('\n'), run.out.size() - 1) << "one line";
    const auto json = nlohmann::ordered_json::parse(run.out);
    std::vector<std::string> members;
    for (const auto& [key, value] : json.items()) {
        members.push_back(key);
    }
    EXPECT_EQ(members,
              (std::vector<std::string>{"serviceType", "title", "provider", "hostname", "domain",
                                        "ipAddress", "loginURL", "username", "password", "email",
                                        "portString", "notes", "detectedDate", "detectedTypes"}));
    EXPECT_EQ(json["serviceType"], "vps");
    EXPECT_EQ(json["hostname"], "IP: 203.0.113.42");
    EXPECT_EQ(json["ipAddress"], "203.0.113.42");
    EXPECT_EQ(json["password"], "Vx7#qLm2pT");
    EXPECT_EQ(json["title"], "VPS \u2014 IP: 203.0.113.42");
    EXPECT_EQ(json["notes"], "Renews 2026-03-15 on the VPS");
    // Midnight in New York, in UTC.
    EXPECT_EQ(json["detectedDate"], "2026-03-15T04:00:00Z");
    EXPECT_EQ(json["detectedTypes"], nlohmann::json::array({"IP", "Date"}));
}

TEST(ParsePasteCliTest, ReadsDatesInTheEnvironmentsZone) {
    const CommandRun run = parsePaste("Expires 2026-03-15", "UTC");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(nlohmann::json::parse(run.out)["detectedDate"], "2026-03-15T00:00:00Z");
}

TEST(ParsePasteCliTest, EmptyInputGivesTheInitialRecord) {
    const CommandRun run = parsePaste("");
    ASSERT_EQ(run.status, 0) << run.err;
    const auto json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["serviceType"], "customSecret");
    EXPECT_EQ(json["title"], "Custom Secret");
    EXPECT_EQ(json["notes"], "");
    EXPECT_TRUE(json["detectedDate"].is_null());
    EXPECT_EQ(json["detectedTypes"], nlohmann::json::array());
}

TEST(ParsePasteCliTest, IllFormedUtf8StillGivesValidJson) {
    const CommandRun run = parsePaste("User: ab\xff\xfe\n");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(nlohmann::json::parse(run.out)["username"], "ab\ufffd\ufffd");
}

TEST(ParsePasteCliTest, RefusesArguments) {
    const CommandRun run = parsePaste("User: x", "UTC", "notes.txt");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("takes no arguments"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("notes.txt"), std::string::npos) << run.err;
}

} // namespace
