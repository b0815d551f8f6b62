// SPDX-License-Identifier: GPL-3.0-or-later
// Sealing export payloads into bundles, in both key modes.

#include "crypto/CryptoManager.h"

#include "Hex.h"
#include "ManualClock.h"
#include "TestTime.h"
#include "crypto/BundleReader.h"

#include <gtest/gtest.h>

namespace {

using namespace vorlane;
using vorlane::testing::ManualClock;
using vorlane::testing::utc;

const std::string payload =
    R"({"organization":"Acme","items":[{"name":"Web server","url":"https://acme.example/admin"}]})";

class CryptoManagerTest : public ::testing::Test {
protected:
    ManualClock clock{utc(2024, 5, 17, 9, 30)};
    CryptoManager crypto{clock};
};

TEST_F(CryptoManagerTest, PasswordBundleHasASaltNoReturnedKeyAndOpensWithThePassword) {
    const auto sealed = crypto.createExportBundle(asBytes(payload), "tr0ub4dor&3");
    ASSERT_TRUE(sealed.ok());
    const ExportBundle& bundle = sealed.value().bundle;
    EXPECT_FALSE(sealed.value().key.has_value());
    EXPECT_EQ(bundle.version, 1);
    EXPECT_EQ(bundle.salt.size(), 32u);
    EXPECT_EQ(bundle.encryptedPayload.size(), payload.size() + 28);
    EXPECT_EQ(bundle.createdAt, utc(2024, 5, 17, 9, 30));

    const auto key = CryptoManager::deriveKey("tr0ub4dor&3", bundle.salt);
    ASSERT_TRUE(key.has_value());
    const auto opened = CryptoManager::decrypt(bundle.encryptedPayload, *key);
    ASSERT_TRUE(opened.ok());
    EXPECT_EQ(std::string(opened.value().begin(), opened.value().end()), payload);
}

TEST_F(CryptoManagerTest, NoPasswordAndEmptyPasswordBothGenerateAKeyAndLeaveTheSaltEmpty) {
    for (const std::optional<std::string_view> password :
         {std::optional<std::string_view>(), std::optional<std::string_view>("")}) {
        SCOPED_TRACE(password ? "empty password" : "no password");
        const auto sealed = crypto.createExportBundle(asBytes(payload), password);
        ASSERT_TRUE(sealed.ok());
        EXPECT_TRUE(sealed.value().bundle.salt.empty());
        ASSERT_TRUE(sealed.value().key.has_value());
        const std::string& keyText = *sealed.value().key;
        EXPECT_EQ(keyText.size(), 44u);
        EXPECT_EQ(keyText.back(), '=');

        const auto key = CryptoManager::keyFromBase64(keyText);
        ASSERT_TRUE(key.has_value());
        EXPECT_EQ(CryptoManager::keyToBase64(*key), keyText);
        const auto opened = CryptoManager::decrypt(sealed.value().bundle.encryptedPayload, *key);
        ASSERT_TRUE(opened.ok());
        EXPECT_EQ(std::string(opened.value().begin(), opened.value().end()), payload);
    }
}

TEST_F(CryptoManagerTest, SamePayloadTwiceDiffersInEverythingButIntegrity) {
    for (const std::optional<std::string_view> password :
         {std::optional<std::string_view>("same password"), std::optional<std::string_view>()}) {
        SCOPED_TRACE(password ? "password" : "generated key");
        const auto first = crypto.createExportBundle(asBytes(payload), password);
        const auto second = crypto.createExportBundle(asBytes(payload), password);
        ASSERT_TRUE(first.ok() && second.ok());
        const ExportBundle& a = first.value().bundle;
        const ExportBundle& b = second.value().bundle;
        if (password) {
            EXPECT_NE(a.salt, b.salt);
        } else {
            EXPECT_NE(*first.value().key, *second.value().key);
        }
        const Bytes nonceA(a.encryptedPayload.begin(), a.encryptedPayload.begin() + 12);
        const Bytes nonceB(b.encryptedPayload.begin(), b.encryptedPayload.begin() + 12);
        EXPECT_NE(nonceA, nonceB);
        EXPECT_NE(a.encryptedPayload, b.encryptedPayload);
        EXPECT_EQ(a.integrity, b.integrity);
    }
}

// The integrity is the SHA-256 of the plaintext in lower-case hex, here of nothing at all.
TEST_F(CryptoManagerTest, EmptyPayloadSealsToTwentyEightBytes) {
    const auto sealed = crypto.createExportBundle({}, "pw");
    ASSERT_TRUE(sealed.ok());
    EXPECT_EQ(sealed.value().bundle.encryptedPayload.size(), 28u);
    EXPECT_EQ(sealed.value().bundle.integrity,
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    const auto opened = BundleReader::open(sealed.value().bundle, "pw");
    ASSERT_TRUE(opened.ok());
    EXPECT_TRUE(opened.value().empty());
}

TEST_F(CryptoManagerTest, PasswordThatIsNotUtf8FailsKeyDerivationAndProducesNothing) {
    const auto sealed = crypto.createExportBundle(asBytes(payload), "caf\xE9");
    ASSERT_FALSE(sealed.ok());
    EXPECT_EQ(sealed.error(), CryptoError::keyDerivationFailed);
    EXPECT_EQ(errorDescription(sealed.error()), "Failed to derive encryption key.");
}

TEST_F(CryptoManagerTest, KeyTextMustBeBase64OfExactlyThirtyTwoBytes) {
    EXPECT_TRUE(CryptoManager::keyFromBase64("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8="));
    EXPECT_FALSE(CryptoManager::keyFromBase64("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHg=="));
    EXPECT_FALSE(CryptoManager::keyFromBase64("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8g"));
    EXPECT_FALSE(CryptoManager::keyFromBase64("not a key"));
    EXPECT_FALSE(CryptoManager::keyFromBase64(""));
}

} // namespace
