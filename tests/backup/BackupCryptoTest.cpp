// SPDX-License-Identifier: GPL-3.0-or-later
// The two primitives a backup file is built on, against published and independently computed
// answers: Argon2id (the key from the backup password) and AES-256-GCM with additional
// authenticated data (the header bound to the sealed body).

#include "Hex.h"
#include "crypto/AesGcm.h"
#include "crypto/Argon2id.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using namespace vorlane;
using vorlane::testing::fromHex;
using vorlane::testing::toHex;

Bytes repeated(std::uint8_t value, std::size_t count) {
    return Bytes(count, value);
}

TEST(Argon2idTest, MatchesRfc9106Vector) {
    // RFC 9106 section 5.3: Argon2id version 0x13 with a secret and associated data.
    const auto tag = Argon2id::derive(repeated(0x01, 32), repeated(0x02, 16), {32, 3, 4}, 32,
                                      repeated(0x03, 8), repeated(0x04, 12));
    ASSERT_TRUE(tag.has_value());
    EXPECT_EQ(toHex(*tag), "0d640df58d78766c08c037a34a8b53c9d01ef0452d75b65eb52520e96b01e659");
}

// Expected keys computed with the `argon2` command-line tool of Debian's argon2 package
// (`echo -n PASSWORD | argon2 SALT -id -t T -k M -p P -l 32 -r`): a wrong type, version, cost
// or password encoding shows up here.
TEST(Argon2idTest, MatchesTheReferenceToolAtTheBackupCostAndWithUnicode) {
    const auto backupCost = Argon2id::derive(asBytes("correct horse battery staple"),
                                             asBytes("vorlane-kat-salt"), {64 * 1024, 3, 2}, 32);
    ASSERT_TRUE(backupCost.has_value());
    EXPECT_EQ(toHex(*backupCost),
              "9e4284811a87d020db5dc52daa91df36baf5f019a6c63a59f1dba20f7f383a15");

    const auto unicode =
        Argon2id::derive(asBytes("Grüße, 密码 🔑"), asBytes("0123456789abcdef"), {64, 1, 1}, 32);
    ASSERT_TRUE(unicode.has_value());
    EXPECT_EQ(toHex(*unicode), "fa1b02156d63d0aeef8068765198f59affc266332550ebecc43efec70ad1da05");
}

TEST(Argon2idTest, RefusesCostsAndSaltsArgon2DoesNotAllow) {
    const Bytes salt = repeated(0x02, 16);
    const Bytes password = repeated(0x01, 8);
    EXPECT_FALSE(Argon2id::derive(password, salt, {15, 1, 2}, 32)); // under 8 KiB a lane
    EXPECT_FALSE(Argon2id::derive(password, salt, {64, 0, 1}, 32)); // no pass
    EXPECT_FALSE(Argon2id::derive(password, salt, {64, 1, 0}, 32)); // no lane
    EXPECT_FALSE(Argon2id::derive(password, repeated(0x02, 7), {64, 1, 1}, 32)); // short salt
    EXPECT_TRUE(Argon2id::derive(password, salt, {16, 1, 2}, 32));
}

// Test case 16 of McGrew and Viega's paper that defines GCM: AES-256, 60 bytes of plaintext and
// 20 bytes of additional authenticated data.
TEST(AesGcmAssociatedDataTest, MatchesMcGrewAndViegasTestCase16AndBindsTheData) {
    const auto key = SymmetricKey::fromBytes(
        fromHex("feffe9928665731c6d6a8f9467308308feffe9928665731c6d6a8f9467308308"));
    ASSERT_TRUE(key.has_value());
    const Bytes nonceBytes = fromHex("cafebabefacedbaddecaf888");
    AesGcm::Nonce nonce{};
    std::copy(nonceBytes.begin(), nonceBytes.end(), nonce.begin());
    const Bytes plaintext =
        fromHex("d9313225f88406e5a55909c5aff5269a86a7a9531534f7da2e4c303d8a318a72"
                "1c3c0c95956809532fcf0e2449a6b525b16aedf5aa0de657ba637b39");
    const Bytes associated = fromHex("feedfacedeadbeeffeedfacedeadbeefabaddad2");

    const auto sealed = AesGcm::seal(plaintext, *key, nonce, associated);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(toHex(sealed.value()),
              "cafebabefacedbaddecaf888"
              "522dc1f099567d07f47f37a32a84427d643a8cdcbfe5c0c97598a2bd2555d1aa"
              "8cb08e48590dbb3da7b08b1056828838c5f61e6393ba7a0abcc9f662"
              "76fc6ece0f4e1768cddf8853bb2d551b");

    const auto opened = AesGcm::open(sealed.value(), *key, associated);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened.value(), plaintext);

    // Opening needs the very same data: another byte, none, or one more all fail.
    Bytes changed = associated;
    changed[3] ^= 0x80;
    EXPECT_FALSE(AesGcm::open(sealed.value(), *key, changed));
    EXPECT_FALSE(AesGcm::open(sealed.value(), *key));
    Bytes longer = associated;
    longer.push_back(0);
    EXPECT_FALSE(AesGcm::open(sealed.value(), *key, longer));
}

} // namespace
