// SPDX-License-Identifier: GPL-3.0-or-later
// The backup file: sealed and opened again with every field, refused with the right sentence
// when the password is wrong, a byte is changed, the file is cut short, comes from a newer
// version or is not a backup at all, and written whole or not at all. Most tests use a tiny key
// derivation cost so that they run fast; one uses the real default.

#include "backup/BackupFile.h"

#include "BackupSamples.h"
#include "ManualClock.h"
#include "backup/BackupHeader.h"
#include "crypto/CryptoManager.h"
#include "util/UserCalendar.h"

#include <gtest/gtest.h>
#include <openssl/rand.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace {

using namespace vorlane;
using namespace vorlane::testing;

const std::string damaged = "The password is wrong or the backup is damaged.";
const std::string notABackup = "This file is not a Vorlane backup.";
const std::string incomplete = "The backup file is incomplete.";
constexpr std::string_view password = "correct horse battery staple";
// Argon2id's least: fast enough to derive a key for every byte of a file.
constexpr BackupKdfParameters tiny{8, 1, 1};

// Byte offsets of the header fields that tell the reader what kind of file it has.
constexpr std::size_t versionOffset = 14;
constexpr std::size_t kdfOffset = 16;
constexpr std::size_t memoryOffset = 18;
constexpr std::size_t passesOffset = 22;
constexpr std::size_t lengthOffset = 30;

std::string sealed(const BackupContents& contents, const BackupKdfParameters& parameters = tiny) {
    std::string file = BackupFile::seal(contents, password, parameters);
    EXPECT_FALSE(file.empty());
    return file;
}

void put32(std::string& file, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        file[offset + i] = static_cast<char>((value >> (8 * i)) & 0xff);
    }
}

class TempDir {
public:
    TempDir() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "vorlane-backup-XXXXXX").string();
        path = ::mkdtemp(pattern.data());
    }
    ~TempDir() { std::filesystem::remove_all(path); }
    std::filesystem::path path;
};

TEST(BackupFileTest, OpensWhatItSealedWithEveryFieldSetOrEveryOptionalAbsent) {
    for (const BackupContents& contents : {fullContents(), sparseContents(), BackupContents{}}) {
        const std::string file = sealed(contents);
        EXPECT_EQ(BackupFile::checkHeader(file), std::nullopt);
        const auto opened = BackupFile::open(file, password);
        ASSERT_TRUE(opened) << opened.error();
        expectSameContents(opened.value(), contents);
    }
}

TEST(BackupFileTest, HeaderCarriesTheCostUsedAndAFreshSaltAndNonceEachTime) {
    const BackupKdfParameters parameters{48, 2, 3};
    const std::string first = sealed(fullContents(), parameters);
    const std::string second = sealed(fullContents(), parameters);
    ASSERT_EQ(first.substr(0, 16), std::string("VORLANE-BACKUP\x01\x00", 16));
    const auto header = BackupHeader::read(first);
    ASSERT_TRUE(header);
    EXPECT_EQ(header.value().parameters.memoryKiB, 48u);
    EXPECT_EQ(header.value().parameters.passes, 2u);
    EXPECT_EQ(header.value().parameters.lanes, 3u);
    EXPECT_EQ(header.value().bodyLength, first.size() - BackupHeader::size - AesGcm::tagSize);
    const auto other = BackupHeader::read(second);
    ASSERT_TRUE(other);
    EXPECT_NE(header.value().salt, other.value().salt);
    EXPECT_NE(header.value().nonce, other.value().nonce);
    // The secrets are not in the file as text, not even compressed away by chance.
    EXPECT_EQ(first.find("pä$$wörd"), std::string::npos);
    EXPECT_EQ(first.find("Production"), std::string::npos);
}

TEST(BackupFileTest, DefaultCostIsArgon2idWith64MiBThreePassesTwoLanes) {
    const std::string file = BackupFile::seal(sparseContents(), password);
    const auto header = BackupHeader::read(file);
    ASSERT_TRUE(header);
    EXPECT_EQ(header.value().parameters.memoryKiB, 64u * 1024);
    EXPECT_EQ(header.value().parameters.passes, 3u);
    EXPECT_EQ(header.value().parameters.lanes, 2u);
    const auto opened = BackupFile::open(file, password);
    ASSERT_TRUE(opened) << opened.error();
    expectSameContents(opened.value(), sparseContents());
    EXPECT_EQ(BackupFile::open(file, "correct horse battery stapler").error(), damaged);
}

TEST(BackupFileTest, WrongPasswordIsRefusedAndTheSamePasswordComposedOtherwiseOpens) {
    const std::string composed = "Passwort für Zoë!"; // ü and ë as one code point each
    const std::string decomposed = "Passwort fu\u0308r Zoe\u0308!";
    const std::string file = BackupFile::seal(sparseContents(), composed, tiny);
    for (std::string_view wrong : {"", "Passwort für Zoë", "passwort für zoë!"}) {
        const auto opened = BackupFile::open(file, wrong);
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error(), damaged);
    }
    // Typed on another machine whose input method composes letters differently.
    EXPECT_TRUE(BackupFile::open(file, decomposed));
}

TEST(BackupFileTest, EveryChangedByteIsRefused) {
    const std::string file = sealed(sparseContents());
    for (std::size_t i = 0; i < file.size(); ++i) {
        for (const std::uint8_t flip : {0x01, 0x80}) {
            std::string changed = file;
            changed[i] = static_cast<char>(changed[i] ^ flip);
            const auto opened = BackupFile::open(changed, password);
            ASSERT_FALSE(opened) << "byte " << i;
            if (i < versionOffset) {
                EXPECT_EQ(opened.error(), notABackup) << "byte " << i;
            } else if (i < kdfOffset) {
                // Version 1 becomes 0 (no backup), 129 or a higher byte (newer formats).
                EXPECT_TRUE(opened.error() == notABackup ||
                            opened.error().starts_with("This backup was made by a newer"))
                    << "byte " << i << ": " << opened.error();
            } else if (i >= lengthOffset && i < lengthOffset + 8) {
                // A longer body than there is reads as a file cut short.
                EXPECT_TRUE(opened.error() == damaged || opened.error() == incomplete)
                    << "byte " << i << ": " << opened.error();
            } else {
                EXPECT_EQ(opened.error(), damaged) << "byte " << i;
            }
        }
    }
}

TEST(BackupFileTest, EveryShortenedFileIsIncompleteAndALongerOneDamaged) {
    const std::string file = sealed(sparseContents());
    EXPECT_EQ(BackupFile::checkHeader(""), notABackup);
    EXPECT_EQ(BackupFile::open("", password).error(), notABackup);
    for (std::size_t length = 1; length < file.size(); ++length) {
        const std::string_view cut = std::string_view(file).substr(0, length);
        EXPECT_EQ(BackupFile::checkHeader(cut), incomplete) << "length " << length;
        const auto opened = BackupFile::open(cut, password);
        ASSERT_FALSE(opened) << "length " << length;
        EXPECT_EQ(opened.error(), incomplete) << "length " << length;
    }
    EXPECT_EQ(BackupFile::open(file + '\0', password).error(), damaged);
    EXPECT_EQ(BackupFile::checkHeader(file + "more"), damaged);
}

TEST(BackupFileTest, NewerFormatIsNamedBeforeAnythingElseIsRead) {
    std::string file = sealed(sparseContents());
    file[versionOffset] = 2;
    EXPECT_EQ(BackupFile::checkHeader(file),
              "This backup was made by a newer version of Vorlane (format 2).");
    EXPECT_EQ(BackupFile::open(file, password).error(),
              "This backup was made by a newer version of Vorlane (format 2).");
    // A newer format may have a shorter header: the version alone decides.
    EXPECT_EQ(BackupFile::checkHeader(std::string("VORLANE-BACKUP\x03\x01", 16)),
              "This backup was made by a newer version of Vorlane (format 259).");
    EXPECT_EQ(BackupFile::checkHeader(std::string("VORLANE-BACKUP\x00\x00", 16)), notABackup);
}

TEST(BackupFileTest, OtherFilesAreNotBackups) {
    ManualClock clock(at(1764000000000));
    const CryptoManager crypto(clock);
    const auto bundle = crypto.createExportBundle(asBytes("{\"services\":[]}"),
                                                  std::string_view("export password 1"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(BackupFile::checkHeader(bundle.value().bundle.toJson()), notABackup);
    EXPECT_EQ(BackupFile::open(bundle.value().bundle.toJson(), password).error(), notABackup);

    std::string random(4096, '\0');
    ASSERT_EQ(RAND_bytes(reinterpret_cast<unsigned char*>(random.data()),
                         static_cast<int>(random.size())),
              1);
    random[0] = 'X'; // a random first byte of 'V' would make it a backup cut short
    EXPECT_EQ(BackupFile::checkHeader(random), notABackup);
    EXPECT_EQ(BackupFile::checkHeader("SQLite format 3"), notABackup);
    EXPECT_EQ(BackupFile::checkHeader("vorlane-backup\x01"), notABackup); // the name's case counts
}

TEST(BackupFileTest, HostileKeyDerivationCostIsRefusedBeforeDeriving) {
    const std::string file = sealed(sparseContents());
    struct Case {
        const char* what;
        std::size_t offset;
        std::uint32_t value;
    };
    // Each of these, if derived, would take gigabytes or hours; refused at once instead.
    for (const Case& hostile :
         {Case{"4 GiB and 1 KiB", memoryOffset, 4u * 1024 * 1024 + 1},
          Case{"all memory", memoryOffset, 0xffffffffu},
          Case{"a million passes", passesOffset, 1000000u}, Case{"no pass", passesOffset, 0u},
          Case{"memory below 8 KiB a lane", memoryOffset, 7u}}) {
        std::string changed = file;
        put32(changed, hostile.offset, hostile.value);
        EXPECT_EQ(BackupFile::checkHeader(changed), damaged) << hostile.what;
        EXPECT_EQ(BackupFile::open(changed, password).error(), damaged) << hostile.what;
    }
    std::string otherAlgorithm = file;
    otherAlgorithm[kdfOffset] = 2;
    EXPECT_EQ(BackupFile::checkHeader(otherAlgorithm), damaged);
    // Nor is a file made that could not be opened again.
    EXPECT_EQ(BackupFile::seal(sparseContents(), password, {4u * 1024 * 1024 + 1, 1, 1}), "");
    EXPECT_EQ(BackupFile::seal(sparseContents(), password, {8, 65, 1}), "");
}

TEST(BackupFileTest, WritesOwnerOnlyAndReadsBack) {
    const TempDir dir;
    const std::string path = (dir.path / "Vorlane-Backup-2026-11-24.vorlanebackup").string();
    EXPECT_EQ(BackupFile::write(path, fullContents(), password, tiny), std::nullopt);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);

    std::string bytes;
    ASSERT_EQ(BackupFile::read(path, bytes), std::nullopt);
    const auto opened = BackupFile::open(bytes, password);
    ASSERT_TRUE(opened) << opened.error();
    expectSameContents(opened.value(), fullContents());
    // Only the file itself is left: no temporary beside it.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path),
                            std::filesystem::directory_iterator()),
              1);
}

TEST(BackupFileTest, FailedWriteOrReadSaysWhyAndLeavesNoFile) {
    const TempDir dir;
    const std::filesystem::path gone = dir.path / "gone";
    const std::string path = (gone / "backup.vorlanebackup").string();
    EXPECT_EQ(BackupFile::write(path, sparseContents(), password, tiny),
              "No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(gone));

    // The rename fails when a folder stands where the file would go: the folder is untouched
    // and the temporary file beside it is gone.
    const std::filesystem::path folder = dir.path / "taken.vorlanebackup";
    std::filesystem::create_directories(folder / "kept");
    EXPECT_EQ(BackupFile::write(folder.string(), fullContents(), password, tiny), "Is a directory");
    EXPECT_TRUE(std::filesystem::exists(folder / "kept"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path),
                            std::filesystem::directory_iterator()),
              1);

    std::string bytes = "left over";
    EXPECT_EQ(BackupFile::read(path, bytes), "No such file or directory");
    EXPECT_EQ(bytes, "");
    EXPECT_EQ(BackupFile::read(dir.path.string(), bytes), "Is a directory");
    // A device with no end is refused before anything is read.
    EXPECT_EQ(BackupFile::read("/dev/zero", bytes), "Not a regular file");
    EXPECT_EQ(bytes, "");
}

TEST(BackupFileTest, FileNameIsTheDayInTheUsersZone) {
    ManualClock clock;
    const UserCalendar newYork(clock, "America/New_York");
    // 03:30 UTC on 1 March is still the last day of February in New York.
    EXPECT_EQ(BackupFile::fileName(at(1772335800000), newYork),
              "Vorlane-Backup-2026-02-28.vorlanebackup");
    const UserCalendar tokyo(clock, "Asia/Tokyo");
    EXPECT_EQ(BackupFile::fileName(at(1772335800000), tokyo),
              "Vorlane-Backup-2026-03-01.vorlanebackup");
}

} // namespace
