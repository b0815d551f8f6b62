// SPDX-License-Identifier: GPL-3.0-or-later
// Files of user data: owner-only whatever the umask, and replaced whole or not at all.

#include "util/PrivateFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace vorlane {
namespace {

namespace fs = std::filesystem;

class PrivateFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "vorlane-private-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        m_dir = pattern;
        // The most permissive umask: whatever stays private does so by itself.
        m_umask = ::umask(0);
    }
    void TearDown() override {
        ::umask(m_umask);
        fs::remove_all(m_dir);
    }

    static std::string contents(const fs::path& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    static fs::perms mode(const fs::path& path) {
        return fs::status(path).permissions() & fs::perms::all;
    }

    fs::path m_dir;
    mode_t m_umask = 0;
};

TEST_F(PrivateFileTest, NewAndReplacedFilesAreTheOwnersAloneWithTheWholeContent) {
    constexpr fs::perms ownerOnly = fs::perms::owner_read | fs::perms::owner_write;
    const fs::path path = m_dir / "export.vorlane";
    EXPECT_EQ(PrivateFile::write(path.string(), std::string("first\0bytes", 11)), std::nullopt);
    EXPECT_EQ(contents(path), std::string("first\0bytes", 11));
    EXPECT_EQ(mode(path), ownerOnly);

    fs::permissions(path, fs::perms(0644));
    EXPECT_EQ(PrivateFile::write(path.string(), "second"), std::nullopt);
    EXPECT_EQ(contents(path), "second");
    EXPECT_EQ(mode(path), ownerOnly) << "a readable older file does not make the new one readable";
    EXPECT_EQ(std::distance(fs::directory_iterator(m_dir), fs::directory_iterator()), 1)
        << "no temporary file is left beside it";
}

TEST_F(PrivateFileTest, AFailedWriteSaysWhyAndLeavesWhatWasThereAndNoOtherFile) {
    // A folder where the file should go: the rename at the end fails, after everything was
    // written, which is the last moment a half-done write could be left behind.
    const fs::path taken = m_dir / "bundle.vorlane";
    fs::create_directory(taken);
    std::ofstream(taken / "inside") << "kept";
    EXPECT_EQ(PrivateFile::write(taken.string(), "lost"), "Is a directory");
    EXPECT_EQ(contents(taken / "inside"), "kept");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_dir), fs::directory_iterator()), 1)
        << "the temporary file is gone";

    EXPECT_EQ(PrivateFile::write((m_dir / "missing" / "file").string(), "x"),
              "No such file or directory");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_dir), fs::directory_iterator()), 1);
}

} // namespace
} // namespace vorlane
