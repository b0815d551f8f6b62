// SPDX-License-Identifier: GPL-3.0-or-later
// Opening bundles the way a recipient does: from the file's text, with a password or key text.

#include "crypto/BundleReader.h"

#include "ManualClock.h"
#include "TestTime.h"
#include "crypto/CryptoManager.h"

#include <gtest/gtest.h>

namespace {

using namespace vorlane;
using vorlane::testing::ManualClock;
using vorlane::testing::utc;

const std::string payload = R"({"organization":"Acme","items":[{"password":"s3cr\/t"}]})";

class BundleReaderTest : public ::testing::Test {
protected:
    // Seals, writes the file's text, and reads it back, as sender and recipient would.
    std::pair<ExportBundle, std::optional<std::string>>
    sealThroughFile(std::string_view content, std::optional<std::string_view> password) {
        auto sealed = crypto.createExportBundle(asBytes(content), password);
        EXPECT_TRUE(sealed.ok());
        auto read = ExportBundle::fromJson(sealed.value().bundle.toJson());
        EXPECT_TRUE(read.ok());
        return {std::move(read).value(), std::move(sealed).value().key};
    }

    static std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

    ManualClock clock{utc(2024, 5, 17, 9, 30)};
    CryptoManager crypto{clock};
};

TEST_F(BundleReaderTest, PasswordBundleOpensWithThePasswordOnly) {
    const auto [bundle, key] = sealThroughFile(payload, "correct horse");
    ASSERT_TRUE(BundleReader::needsPassword(bundle));

    const auto opened = BundleReader::open(bundle, "correct horse");
    ASSERT_TRUE(opened.ok());
    EXPECT_EQ(text(opened.value()), payload);

    const std::pair<std::string_view, CryptoError> wrong[] = {
        {"", CryptoError::passwordRequired},
        {"correct horse ", CryptoError::decryptionFailed},
        {"Correct horse", CryptoError::decryptionFailed},
        {"caf\xE9", CryptoError::keyDerivationFailed},
    };
    for (const auto& [secret, error] : wrong) {
        SCOPED_TRACE(secret);
        const auto refused = BundleReader::open(bundle, secret);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error(), error);
    }
}

TEST_F(BundleReaderTest, GeneratedKeyBundleOpensWithTheKeyTextOnly) {
    const auto [bundle, key] = sealThroughFile(payload, std::nullopt);
    ASSERT_FALSE(BundleReader::needsPassword(bundle));
    ASSERT_TRUE(key.has_value());

    for (const std::string& pasted : {*key, "  " + *key + "\n"}) {
        const auto opened = BundleReader::open(bundle, pasted);
        ASSERT_TRUE(opened.ok());
        EXPECT_EQ(text(opened.value()), payload);
    }

    const auto otherKey = SymmetricKey::random();
    ASSERT_TRUE(otherKey.has_value());
    const std::pair<std::string, CryptoError> wrong[] = {
        {"", CryptoError::invalidKey},
        {"correct horse", CryptoError::invalidKey},
        {key->substr(0, 40) + "==", CryptoError::invalidKey},
        {CryptoManager::keyToBase64(*otherKey), CryptoError::decryptionFailed},
    };
    for (const auto& [secret, error] : wrong) {
        SCOPED_TRACE(secret);
        const auto refused = BundleReader::open(bundle, secret);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error(), error);
    }
}

TEST_F(BundleReaderTest, EverySingleByteFlipOfTheSealedDataIsRejected) {
    for (const std::optional<std::string_view> password :
         {std::optional<std::string_view>("pw"), std::optional<std::string_view>()}) {
        const auto [bundle, key] = sealThroughFile("{\"a\":1}", password);
        const std::string secret = key ? *key : "pw";
        ASSERT_EQ(bundle.encryptedPayload.size(), 7u + 28u);
        for (std::size_t i = 0; i < bundle.encryptedPayload.size(); ++i) {
            for (const std::uint8_t mask : {0x01, 0x80, 0xFF}) {
                ExportBundle altered = bundle;
                altered.encryptedPayload[i] ^= mask;
                const auto refused = BundleReader::open(altered, secret);
                ASSERT_FALSE(refused.ok()) << "byte " << i << " mask " << int(mask);
                EXPECT_EQ(refused.error(), CryptoError::decryptionFailed);
            }
        }
    }
}

TEST_F(BundleReaderTest, TruncatedOrAlteredSaltIsRejected) {
    const auto [bundle, key] = sealThroughFile(payload, "pw");
    // One byte short, and shorter than a nonce and a tag together, down to nothing.
    for (const std::size_t length : {bundle.encryptedPayload.size() - 1, std::size_t{27},
                                     std::size_t{12}, std::size_t{1}, std::size_t{0}}) {
        ExportBundle truncated = bundle;
        truncated.encryptedPayload.resize(length);
        EXPECT_EQ(BundleReader::open(truncated, "pw").error(), CryptoError::decryptionFailed)
            << length;
    }

    ExportBundle otherSalt = bundle;
    otherSalt.salt[5] ^= 0x10;
    EXPECT_EQ(BundleReader::open(otherSalt, "pw").error(), CryptoError::decryptionFailed);
}

// Written by an independent implementation (Python's `cryptography` package: HKDF-SHA256 with
// the export label, AES-256-GCM with the nonce 0f0e...04), so that a bundle made elsewhere opens
// here byte for byte, and the format is not merely consistent with itself.
TEST(BundleReaderForeignTest, OpensABundleWrittenByAnotherImplementation) {
    const auto bundle = ExportBundle::fromJson(
        R"({"version":1,"salt":"ZGVmZ2hpamtsbW5vcHFyc3R1dnd4eXp7fH1+f4CBgoM=",)"
        R"("encryptedPayload":"Dw4NDAsKCQgHBgUEn+aL6qNrPp\/ve76w3I1ERnNlsIlZAuyvOtDf7HOjvEOwJCAD)"
        R"(xn8S+xOcNT2R2RG7ztdh1VUyYEQoEutsqCST9mOUOPymOxn7eCBrUdOl3XX8UdI=",)"
        R"("createdAt":737631000.25,)"
        R"("integrity":"0a440491d21d44ab10b2b2810b65f7c5bbc8572183f5d64a198ad3d411f457d7"})");
    ASSERT_TRUE(bundle.ok()) << bundle.error();
    const auto opened = BundleReader::open(bundle.value(), "p\xC3\xA4ssword");
    ASSERT_TRUE(opened.ok()) << errorDescription(opened.error());
    EXPECT_EQ(std::string(opened.value().begin(), opened.value().end()),
              "{\"organization\":\"Acme Caf\xC3\xA9\",\"url\":\"https://acme.example/wp-admin\"}");
}

TEST_F(BundleReaderTest, LargeAndBinaryPayloadsRoundTrip) {
    std::string large(3 * 1024 * 1024 + 7, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<char>((i * 131) % 256);
    }
    const auto [bundle, key] = sealThroughFile(large, "pw");
    const auto opened = BundleReader::open(bundle, "pw");
    ASSERT_TRUE(opened.ok());
    EXPECT_TRUE(text(opened.value()) == large);
}

} // namespace
