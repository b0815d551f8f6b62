// SPDX-License-Identifier: GPL-3.0-or-later
// HKDF-SHA256 against RFC 5869's own vectors, and the export key derivation built on it.

#include "crypto/Hkdf.h"

#include "Hex.h"
#include "crypto/CryptoManager.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using namespace vorlane;
using vorlane::testing::fromHex;
using vorlane::testing::toHex;

std::vector<std::uint8_t> range(int first, int count) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
    std::iota(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(first));
    return bytes;
}

struct RfcVector {
    const char* name;
    std::vector<std::uint8_t> ikm;
    std::vector<std::uint8_t> salt;
    std::vector<std::uint8_t> info;
    std::size_t length;
    const char* okm;
};

TEST(HkdfTest, MatchesRfc5869Sha256Vectors) {
    const std::vector<RfcVector> vectors = {
        {"A.1 basic", std::vector<std::uint8_t>(22, 0x0b), range(0x00, 13), range(0xf0, 10), 42,
         "3cb25f25faacd57a90434f64d0362f2a2d2d0a90cf1a5a4c5db02d56ecc4c5bf34007208d5b887185865"},
        {"A.2 longer inputs and outputs", range(0x00, 80), range(0x60, 80), range(0xb0, 80), 82,
         "b11e398dc80327a1c8e7f78c596a49344f012eda2d4efad8a050cc4c19afa97c59045a99cac7827271cb41c6"
         "5e590e09da3275600c2f09b8367793a9aca3db71cc30c58179ec3e87c14c01d5c1f3434f1d87"},
        {"A.3 empty salt and info",
         std::vector<std::uint8_t>(22, 0x0b),
         {},
         {},
         42,
         "8da4e775a563c18f715f802a063c5a31b8a11f5c5ee1879ec3454e5f3c738d2d9d201395faa4b61a96c8"},
    };
    for (const RfcVector& vector : vectors) {
        SCOPED_TRACE(vector.name);
        const auto okm = Hkdf::sha256(vector.ikm, vector.salt, vector.info, vector.length);
        ASSERT_TRUE(okm.has_value());
        EXPECT_EQ(toHex(*okm), vector.okm);
    }
}

// Expected keys computed independently (Python's hmac module, RFC 5869 extract and expand) with
// the info label "com.vorlane.export" and 32 bytes of output: a wrong label, length or password
// encoding shows up here.
TEST(HkdfTest, ExportKeyUsesThePasswordBytesTheLabelAndThirtyTwoBytes) {
    const auto ascii = CryptoManager::deriveKey("correct horse battery staple", range(0, 32));
    ASSERT_TRUE(ascii.has_value());
    EXPECT_EQ(toHex(ascii->bytes()),
              "8fe489426952f68dad6d79c476f915fe07032f172d64386dabb738c381e8356c");

    const auto accented = CryptoManager::deriveKey("p\xC3\xA4ssw\xC3\xB6rd", range(32, 32));
    ASSERT_TRUE(accented.has_value());
    EXPECT_EQ(toHex(accented->bytes()),
              "29108c1a4975ec2b89d32750c1705750ed165039121ce13b69f4d7e425e6e841");
}

TEST(HkdfTest, PasswordThatIsNotUtf8DerivesNothing) {
    const auto salt = CryptoManager::generateSalt();
    EXPECT_FALSE(CryptoManager::deriveKey("caf\xE9", salt).has_value());      // Latin-1 e-acute
    EXPECT_FALSE(CryptoManager::deriveKey("\xC3", salt).has_value());         // cut-off sequence
    EXPECT_FALSE(CryptoManager::deriveKey("\xED\xA0\x80", salt).has_value()); // lone surrogate
}

} // namespace
