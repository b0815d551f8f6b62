// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop program opens the vault before anything else: a vault it cannot use ends it with
// the reason and status 1, and the file is left exactly as it was.

#include "VaultFixture.h"

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

} // namespace
} // namespace vorlane::testing
