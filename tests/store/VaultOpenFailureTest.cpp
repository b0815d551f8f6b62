// SPDX-License-Identifier: GPL-3.0-or-later
// Files the store must refuse: each gives a reason, and the file stays byte for byte as it was.

#include "VaultFixture.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace vorlane::testing {
namespace {

class VaultOpenFailureTest : public VaultFixture {
protected:
    // Opens `m_path`, expecting a refusal that mentions `reason`, and checks that neither the
    // file nor its folder's list of files changed.
    void expectRefused(const std::string& reason) {
        const std::string before = fileBytes(m_path);
        const auto filesBefore = folderListing();
        const std::string error = refusal();
        EXPECT_NE(error.find(reason), std::string::npos) << error;
        EXPECT_NE(error.find(m_path), std::string::npos) << error;
        EXPECT_EQ(fileBytes(m_path), before);
        EXPECT_EQ(folderListing(), filesBefore);
    }

    // Why opening `m_path` fails; empty, and a failed test, when it opens.
    std::string refusal() {
        auto opened = DataStore::open(m_path, m_keychain, m_calendar, m_timers);
        EXPECT_FALSE(opened) << m_path << " opened";
        return opened ? std::string() : opened.error();
    }

    std::vector<std::string> folderListing() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    void write(const std::string& bytes) {
        std::ofstream out(m_path, std::ios::binary | std::ios::trunc);
        out << bytes;
    }

    // A real vault with a few records, closed cleanly.
    void makeVault() {
        for (const char* suffix : {"", "-wal", "-shm"}) {
            std::filesystem::remove(m_path + suffix);
        }
        open();
        Organization& owner = addOrganization("Owner");
        for (int i = 0; i < 200; ++i) {
            addService(owner, "Service " + std::to_string(i)).notes = std::string(300, 'x');
        }
        ASSERT_TRUE(m_store->save());
        m_store.reset();
    }
};

TEST_F(VaultOpenFailureTest, RefusesFilesThatAreNotVaults) {
    write("name,password\nacme,hunter2\n");
    expectRefused("is not a Vorlane vault");
    write("");
    expectRefused("is not a Vorlane vault");

    std::filesystem::remove(m_path);
    {
        std::string error;
        auto other = SqliteConnection::open(m_path, SqliteConnection::Mode::readWriteCreate, error);
        ASSERT_TRUE(other);
        ASSERT_TRUE(other->execute("CREATE TABLE notes (body TEXT); INSERT INTO notes VALUES "
                                   "('someone else''s database')"));
    }
    expectRefused("is not a Vorlane vault");
}

TEST_F(VaultOpenFailureTest, RefusesADamagedVault) {
    makeVault();
    std::string bytes = fileBytes(m_path);
    ASSERT_GT(bytes.size(), 16384u);
    // Scribble over the middle of the file, well past the header page.
    for (std::size_t i = 8192; i < 12288; ++i) {
        bytes[i] = static_cast<char>(i * 7);
    }
    write(bytes);
    expectRefused("is damaged");

    // Cut short.
    makeVault();
    write(fileBytes(m_path).substr(0, 6000));
    expectRefused("is damaged");

    // Damage that reading the records never meets: only an index page, which the check of every
    // page (running beside the read) finds.
    makeVault();
    std::int64_t indexPage = 0;
    {
        SqliteConnection db = raw();
        indexPage = db.queryInteger("SELECT rootpage FROM sqlite_master "
                                    "WHERE name = 'services_by_organization'")
                        .value_or(0);
    }
    ASSERT_GT(indexPage, 1);
    bytes = fileBytes(m_path);
    constexpr std::size_t pageSize = 4096;
    const std::size_t pageStart = static_cast<std::size_t>(indexPage - 1) * pageSize;
    ASSERT_LE(pageStart + pageSize, bytes.size());
    for (std::size_t i = pageStart + 100; i < pageStart + pageSize; ++i) {
        bytes[i] = static_cast<char>(i * 13);
    }
    write(bytes);
    expectRefused("is damaged");
}

TEST_F(VaultOpenFailureTest, RefusesWhatCannotBeRead) {
    std::filesystem::create_directory(m_path);
    std::string error = refusal();
    EXPECT_NE(error.find("is not a file"), std::string::npos) << error;

    // A path through a file: nothing can be read or created there.
    std::ofstream(m_folder + "/plain") << "x";
    m_path = m_folder + "/plain/vault.sqlite";
    error = refusal();
    EXPECT_NE(error.find("cannot read " + m_path + ": Not a directory"), std::string::npos)
        << error;
}

TEST_F(VaultOpenFailureTest, RefusesAFileWithoutReadPermission) {
    makeVault();
    if (::geteuid() != 0) {
        ::chmod(m_path.c_str(), 0);
        expectRefused("cannot read");
        ::chmod(m_path.c_str(), 0600);
        return;
    }
    // Root reads any file whatever its mode, so the refusal is checked in a child that has
    // become an ordinary user (nobody), for whom root's 0600 vault is unreadable.
    const std::string before = fileBytes(m_path);
    ::chmod(m_folder.c_str(), 0755);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            constexpr uid_t nobody = 65534;
            if (::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
                std::_Exit(3);
            }
            const auto opened = DataStore::open(m_path, m_keychain, m_calendar, m_timers);
            const std::string error = opened ? std::string() : opened.error();
            std::fprintf(stderr, "%s\n", error.c_str());
            std::_Exit(error.find("cannot read") != std::string::npos ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "cannot read");
    EXPECT_EQ(fileBytes(m_path), before);
}

TEST_F(VaultOpenFailureTest, RefusesANewerSchemaAndTheVaultIsStillThereAfterwards) {
    makeVault();
    {
        SqliteConnection db = raw();
        // Leave the change in the -wal file: refusing must not fold it into the main file.
        sqlite3_db_config(db.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        ASSERT_TRUE(db.execute("UPDATE vault_meta SET value = '2.0.0'"));
    }
    ASSERT_TRUE(std::filesystem::exists(m_path + "-wal"));
    expectRefused("newer version of Vorlane (schema 2.0.0)");
    {
        SqliteConnection db = raw();
        ASSERT_TRUE(db.execute("UPDATE vault_meta SET value = '1.1.0'"));
    }
    DataStore& store = open();
    EXPECT_EQ(store.fetchAllServices().size(), 200u);
}

} // namespace
} // namespace vorlane::testing
