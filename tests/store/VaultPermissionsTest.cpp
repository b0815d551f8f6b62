// SPDX-License-Identifier: GPL-3.0-or-later
// Permissions of what already exists: a data folder, vault and log left open to others (an old
// release, a copy, a loose umask) are tightened when the vault opens; a folder the user chose for
// the vault is theirs and keeps its own.

#include "VaultFixture.h"
#include "store/VaultLocation.h"

#include <cstdlib>

namespace vorlane::testing {
namespace {

namespace fs = std::filesystem;

fs::perms modeOf(const std::string& path) {
    return fs::status(path).permissions() & fs::perms::all;
}

class VaultPermissionsTest : public VaultFixture {
protected:
    // The vault, saved once, so that its -wal and -shm exist beside it; then everything loosened.
    void loosenAll() {
        addOrganization("Acme");
        ASSERT_TRUE(m_store->save());
        m_store.reset();
        // A reader left open keeps the log and its index in place while the vault is closed.
        m_reader.emplace(raw());
        ASSERT_TRUE(m_reader->execute("SELECT count(*) FROM organizations"));
        for (const std::string& file : {m_path, m_path + "-wal", m_path + "-shm"}) {
            ASSERT_TRUE(fs::exists(file)) << file;
            fs::permissions(file, fs::perms(0644));
        }
        fs::permissions(m_folder, fs::perms(0755));
    }

    std::optional<SqliteConnection> m_reader;
};

TEST_F(VaultPermissionsTest, TheDataFolderVaultAndLogAreTightenedWhenTheVaultOpens) {
    ASSERT_EQ(::setenv("VORLANE_DATA_DIR", m_folder.c_str(), 1), 0);
    ASSERT_EQ(VaultLocation::resolve(), m_path);
    open();
    loosenAll();
    open();
    ::unsetenv("VORLANE_DATA_DIR");
    EXPECT_EQ(modeOf(m_folder), fs::perms::owner_all);
    for (const std::string& file : {m_path, m_path + "-wal", m_path + "-shm"}) {
        EXPECT_EQ(modeOf(file), fs::perms::owner_read | fs::perms::owner_write) << file;
    }
    EXPECT_EQ(m_store->fetchOrganizations().size(), 1U);
}

TEST_F(VaultPermissionsTest, AFolderChosenForTheVaultKeepsItsPermissions) {
    ::unsetenv("VORLANE_DATA_DIR");
    open();
    loosenAll();
    open();
    EXPECT_EQ(modeOf(m_folder), fs::perms(0755));
    EXPECT_EQ(modeOf(m_path), fs::perms::owner_read | fs::perms::owner_write);
}

} // namespace
} // namespace vorlane::testing
