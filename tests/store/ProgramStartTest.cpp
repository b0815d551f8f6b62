// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop program opens the vault before anything else: a vault it cannot use ends it with
// the reason and status 1, and the file is left exactly as it was. Once running, a logout's
// SIGTERM ends it through its own quit.

#include "VaultFixture.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

namespace vorlane::testing {
namespace {

class ProgramStartTest : public VaultFixture {
protected:
    void makeNewerVault() {
        open();
        addOrganization("Owner");
        ASSERT_TRUE(m_store->save());
        m_store.reset();
        SqliteConnection db = raw();
        ASSERT_TRUE(db.execute("UPDATE vault_meta SET value = '3.0.0'"));
    }

    // Runs vorlane without a display.
    static CommandRun startProgram(const std::string& environment, const std::string& arguments) {
        return runCommand("env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=offscreen " +
                          environment + " " + VORLANE_APP + " " + arguments);
    }
};

TEST_F(ProgramStartTest, ABadVaultEndsTheProgramAndStaysUntouched) {
    makeNewerVault();
    const std::string before = fileBytes(m_path);
    const auto [status, out, err] = startProgram("", "--vault " + shellWord(m_path));
    EXPECT_EQ(status, 1);
    EXPECT_EQ(err, "Failed to initialize data store: " + m_path +
                       " was written by a newer version of Vorlane (schema 3.0.0); this version "
                       "reads schema 1.1.0\n");
    EXPECT_EQ(fileBytes(m_path), before);
}

TEST_F(ProgramStartTest, TheDataFolderVariableChoosesTheVault) {
    std::filesystem::create_directory(m_folder + "/data");
    m_path = m_folder + "/data/vault.sqlite";
    std::ofstream(m_path) << "plain text, not a vault";
    const auto [status, out, err] =
        startProgram("VORLANE_DATA_DIR=" + shellWord(m_folder + "/data"), "");
    EXPECT_EQ(status, 1);
    EXPECT_EQ(err, "Failed to initialize data store: " + m_path + " is not a Vorlane vault\n");
    EXPECT_EQ(fileBytes(m_path), "plain text, not a vault");
}

// Whether the process has a handler of its own for `signalNumber` (its SigCgt mask says so).
bool catches(pid_t pid, int signalNumber) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigCgt:")) {
            const unsigned long long mask = std::stoull(line.substr(7), nullptr, 16);
            return (mask >> (signalNumber - 1) & 1U) != 0;
        }
    }
    return false;
}

TEST_F(ProgramStartTest, ALogoutsTerminationSignalEndsTheProgramThroughItsOwnQuit) {
    open();
    addOrganization("Owner");
    ASSERT_TRUE(m_store->save());
    m_store.reset();

    const std::string config = "XDG_CONFIG_HOME=" + m_folder + "/config";
    std::vector<std::string> words{
        "env",  "-u",        "DISPLAY", "-u",  "WAYLAND_DISPLAY", "QT_QPA_PLATFORM=offscreen",
        config, VORLANE_APP, "--vault", m_path};
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    ASSERT_EQ(::posix_spawnp(&pid, "env", nullptr, nullptr, argv.data(), environ), 0);

    // Sent once the program has its handler (before that, the signal's default would end it
    // and prove nothing); a signal that comes before its window runs is kept until then.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!catches(pid, SIGTERM) && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ASSERT_TRUE(catches(pid, SIGTERM)) << "the program never took SIGTERM";
    ASSERT_EQ(::kill(pid, SIGTERM), 0);

    int status = 0;
    pid_t ended = 0;
    while ((ended = ::waitpid(pid, &status, WNOHANG)) == 0 &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    if (ended == 0) {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, &status, 0);
        FAIL() << "the program did not end after SIGTERM";
    }
    ASSERT_TRUE(WIFEXITED(status))
        << "ended by signal " << WTERMSIG(status) << " instead of quitting";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
} // namespace vorlane::testing
