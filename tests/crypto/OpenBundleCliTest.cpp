// SPDX-License-Identifier: GPL-3.0-or-later
// `vorlane-cli open-bundle` as a recipient runs it: the real program on real files, and on a
// pseudo-terminal for the prompt, where the test types the person's answer.

#include "ManualClock.h"
#include "RunCommand.h"
#include "TestTime.h"
#include "crypto/CryptoManager.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace vorlane;
namespace fs = std::filesystem;

const std::string payload = R"({"organization":"Acme","items":[{"url":"https://acme.example/"}]})";

using vorlane::testing::CommandRun;

class OpenBundleCliTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "vorlane-cli-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override { fs::remove_all(dir); }

    fs::path write(const std::string& name, const std::string& contents) {
        const fs::path path = dir / name;
        std::ofstream(path, std::ios::binary) << contents;
        return path;
    }

    // Seals the payload and writes the bundle file; the generated key's text when no password.
    std::optional<std::string> writeBundle(const std::string& name,
                                           std::optional<std::string_view> password) {
        auto sealed = crypto.createExportBundle(asBytes(payload), password);
        EXPECT_TRUE(sealed.ok());
        write(name, sealed.value().bundle.toJson());
        return sealed.value().key;
    }

    // Runs vorlane-cli with stdin from /dev/null, so no one is there to be asked.
    static CommandRun run(const std::vector<std::string>& arguments) {
        std::string command = VORLANE_CLI;
        for (const std::string& argument : arguments) {
            command += " " + vorlane::testing::shellWord(argument);
        }
        return vorlane::testing::runCommand(command);
    }

    fs::path dir;
    vorlane::testing::ManualClock clock{vorlane::testing::utc(2024, 5, 17, 9, 30)};
    CryptoManager crypto{clock};
};

TEST_F(OpenBundleCliTest, PrintsExactlyThePayloadWithAPasswordOrKeyFile) {
    writeBundle("password.vorlane", "s3cret pass");
    // Written by `echo`: the line break is not part of the password or key, the space is.
    write("password", "s3cret pass\n");
    write("key", *writeBundle("key.vorlane", std::nullopt) + "\n");
    const std::string p = dir.string() + "/";
    for (const auto& arguments :
         {std::vector<std::string>{"open-bundle", p + "password.vorlane", "--password-file",
                                   p + "password"},
          std::vector<std::string>{"open-bundle", p + "key.vorlane", "--key-file", p + "key"}}) {
        SCOPED_TRACE(arguments[1]);
        const CommandRun opened = run(arguments);
        EXPECT_EQ(opened.status, 0) << opened.err;
        EXPECT_EQ(opened.out, payload);
        EXPECT_EQ(opened.err, "");
    }
}

TEST_F(OpenBundleCliTest, FailuresPrintTheirMessageAndNothingOfThePayload) {
    writeBundle("password.vorlane", "right");
    const auto key = writeBundle("key.vorlane", std::nullopt);
    ASSERT_TRUE(key.has_value());
    // The right password, but the integrity hash no longer matches what opens.
    auto sealed = crypto.createExportBundle(asBytes(payload), "right");
    ASSERT_TRUE(sealed.ok());
    sealed.value().bundle.integrity = CryptoManager::integrityOf(asBytes("something else"));
    write("tampered.vorlane", sealed.value().bundle.toJson());
    write("right", "right");
    write("wrong", "wrong");
    write("empty", "");
    write("short-key", key->substr(0, 40) + "==");
    // One byte over the limit, and sparse: no disk space taken.
    fs::resize_file(write("huge.vorlane", "{"), 64 * 1024 * 1024 + 1);

    const std::string p = dir.string() + "/";
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"open-bundle", p + "password.vorlane", "--password-file", p + "wrong"},
         "vorlane-cli: Failed to decrypt data.\n"},
        {{"open-bundle", p + "password.vorlane", "--password-file", p + "empty"},
         "vorlane-cli: A password is required to decrypt this bundle.\n"},
        {{"open-bundle", p + "key.vorlane", "--key-file", p + "short-key"},
         "vorlane-cli: The provided decryption key is invalid.\n"},
        {{"open-bundle", p + "tampered.vorlane", "--password-file", p + "right"},
         "vorlane-cli: Data integrity check failed. The data may have been tampered with.\n"},
        {{"open-bundle", p + "password.vorlane"},
         "vorlane-cli: A password is required to decrypt this bundle. Give it with "
         "--password-file FILE, or run this in a terminal to be asked.\n"},
        {{"open-bundle", p + "right"},
         "vorlane-cli: " + p +
             "right: This file is not a Vorlane export bundle: it is not "
             "valid JSON.\n"},
        {{"open-bundle", p + "missing.vorlane"},
         "vorlane-cli: cannot read " + p + "missing.vorlane: No such file or directory\n"},
        {{"open-bundle", p + "key.vorlane", "--password-file", p + "right"},
         "vorlane-cli: this bundle was sealed with a generated key, not a password: give the key "
         "with --key-file FILE or at the prompt\n"},
        // Endless or oversized files are refused after a bounded read, never read to the end.
        {{"open-bundle", "/dev/zero"},
         "vorlane-cli: cannot read /dev/zero: it is larger than 64 MiB, which no export bundle "
         "is\n"},
        {{"open-bundle", p + "huge.vorlane"},
         "vorlane-cli: cannot read " + p +
             "huge.vorlane: it is larger than 64 MiB, which no export bundle is\n"},
        {{"open-bundle", p + "password.vorlane", "--password-file", "/dev/zero"},
         "vorlane-cli: cannot read /dev/zero: it is larger than 64 KiB, which no password or key "
         "is\n"},
    };
    for (const auto& [arguments, message] : cases) {
        SCOPED_TRACE(arguments[1] + (arguments.size() > 3 ? " " + arguments[3] : ""));
        const CommandRun refused = run(arguments);
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.err, message);
        EXPECT_EQ(refused.out, "");
    }
}

TEST_F(OpenBundleCliTest, WrongCommandLinesAreUsageErrors) {
    writeBundle("acme.vorlane", "pw");
    const std::string bundle = (dir / "acme.vorlane").string();
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"open-bundle"},
          {"open-bundle", bundle, "--password-file"},
          {"open-bundle", bundle, "--pasword-file", "x"},
          {"open-bundle", bundle, bundle},
          {"open-bundle", bundle, "--password-file", "a", "--key-file", "b"}}) {
        const CommandRun refused = run(arguments);
        EXPECT_EQ(refused.status, 2) << arguments.back();
        EXPECT_NE(refused.err, "");
        EXPECT_EQ(refused.out, "");
    }
}

// Reads from the terminal's master side until `until` has appeared or the child closed it.
std::string readTerminal(int master, const std::string& until) {
    std::string seen;
    char buffer[4096];
    while (until.empty() || seen.find(until) == std::string::npos) {
        pollfd ready{master, POLLIN, 0};
        if (poll(&ready, 1, 10000) <= 0) {
            break; // a hung child: the assertions below will say what was missing
        }
        const ssize_t got = ::read(master, buffer, sizeof buffer);
        if (got <= 0) {
            break; // EIO once the child has exited and closed its side
        }
        seen.append(buffer, static_cast<std::size_t>(got));
    }
    return seen;
}

TEST_F(OpenBundleCliTest, OnATerminalAsksForThePasswordWithoutEchoingIt) {
    writeBundle("acme.vorlane", "hunter2-typed");
    const std::string bundle = (dir / "acme.vorlane").string();
    int master = -1;
    const pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        execl(VORLANE_CLI, VORLANE_CLI, "open-bundle", bundle.c_str(), nullptr);
        _exit(127);
    }
    const std::string prompt = readTerminal(master, "Export password: ");
    EXPECT_NE(prompt.find("Export password: "), std::string::npos) << prompt;
    const std::string typed = "hunter2-typed\n";
    ASSERT_EQ(::write(master, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    const std::string rest = readTerminal(master, "");
    int status = 0;
    // The child closes the terminal as it exits; one stuck waiting for an answer it never got is
    // killed after a while instead of hanging the suite.
    for (int tries = 0; waitpid(pid, &status, WNOHANG) == 0; ++tries) {
        if (tries == 1000) {
            kill(pid, SIGKILL);
        }
        usleep(10000);
    }
    ::close(master);

    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << rest;
    EXPECT_NE(rest.find(payload), std::string::npos) << rest;
    EXPECT_EQ((prompt + rest).find("hunter2"), std::string::npos) << "password echoed: " << rest;
}

} // namespace
