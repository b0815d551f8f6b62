// AES-256-GCM against the published known-answer vectors (McGrew and Viega, "The Galois/Counter
// Mode of Operation", test cases 13 to 15: 256-bit keys, no additional data), through the same
// seal and open that bundles use.

#include "crypto/AesGcm.h"

#include "Hex.h"
#include "crypto/CryptoManager.h"

#include <gtest/gtest.h>

namespace {

using namespace vorlane;
using vorlane::testing::fromHex;
using vorlane::testing::toHex;

struct GcmVector {
    const char* name;
    const char* key;
    const char* nonce;
    const char* plaintext;
    const char* ciphertext;
    const char* tag;
};

const GcmVector vectors[] = {
    {"test case 13", "0000000000000000000000000000000000000000000000000000000000000000",
     "000000000000000000000000", "", "", "530f8afbc74536b9a963b4f1c4cb738b"},
    {"test case 14", "0000000000000000000000000000000000000000000000000000000000000000",
     "000000000000000000000000", "00000000000000000000000000000000",
     "cea7403d4d606b6e074ec5d3baf39d18", "d0d1c8a799996bf0265b98b5d48ab919"},
    {"test case 15", "feffe9928665731c6d6a8f9467308308feffe9928665731c6d6a8f9467308308",
     "cafebabefacedbaddecaf888",
     "d9313225f88406e5a55909c5aff5269a86a7a9531534f7da2e4c303d8a318a721c3c0c95956809532fcf0e2449a6"
     "b525b16aedf5aa0de657ba637b391aafd255",
     "522dc1f099567d07f47f37a32a84427d643a8cdcbfe5c0c97598a2bd2555d1aa8cb08e48590dbb3da7b08b10568"
     "28838c5f61e6393ba7a0abcc9f662898015ad",
     "b094dac5d93471bdec1a502270e3cc6c"},
};

SymmetricKey keyFrom(const char* hex) {
    auto key = SymmetricKey::fromBytes(fromHex(hex));
    if (!key) {
        throw std::invalid_argument("test key is not 32 bytes");
    }
    return std::move(*key);
}

AesGcm::Nonce nonceFrom(const char* hex) {
    const auto bytes = fromHex(hex);
    AesGcm::Nonce nonce{};
    std::copy(bytes.begin(), bytes.end(), nonce.begin());
    return nonce;
}

TEST(AesGcmTest, SealGivesNonceCiphertextAndTagOfThePublishedVectors) {
    for (const GcmVector& vector : vectors) {
        SCOPED_TRACE(vector.name);
        const auto sealed =
            AesGcm::seal(fromHex(vector.plaintext), keyFrom(vector.key), nonceFrom(vector.nonce));
        ASSERT_TRUE(sealed.ok());
        EXPECT_EQ(toHex(sealed.value()),
                  std::string(vector.nonce) + vector.ciphertext + vector.tag);
    }
}

TEST(AesGcmTest, OpenRecoversThePublishedPlaintexts) {
    for (const GcmVector& vector : vectors) {
        SCOPED_TRACE(vector.name);
        const auto combined = fromHex(std::string(vector.nonce) + vector.ciphertext + vector.tag);
        const auto opened = AesGcm::open(combined, keyFrom(vector.key));
        ASSERT_TRUE(opened.ok());
        EXPECT_EQ(toHex(opened.value()), vector.plaintext);
    }
}

TEST(AesGcmTest, OpenRejectsAnAlteredTagOrAWrongKey) {
    const GcmVector& vector = vectors[2];
    auto combined = fromHex(std::string(vector.nonce) + vector.ciphertext + vector.tag);
    auto wrongKey = fromHex(vector.key);
    wrongKey[31] ^= 0x01;
    const auto withWrongKey = AesGcm::open(combined, *SymmetricKey::fromBytes(wrongKey));
    ASSERT_FALSE(withWrongKey.ok());
    EXPECT_EQ(withWrongKey.error(), CryptoError::decryptionFailed);

    combined.back() ^= 0x80;
    const auto withAlteredTag = AesGcm::open(combined, keyFrom(vector.key));
    ASSERT_FALSE(withAlteredTag.ok());
    EXPECT_EQ(withAlteredTag.error(), CryptoError::decryptionFailed);
}

TEST(AesGcmTest, OpenRejectsAnythingShorterThanNonceAndTag) {
    const auto key = SymmetricKey::random();
    ASSERT_TRUE(key.has_value());
    for (std::size_t length : {0u, 1u, 12u, 27u}) {
        SCOPED_TRACE(length);
        const auto opened = AesGcm::open(std::vector<std::uint8_t>(length, 0), *key);
        ASSERT_FALSE(opened.ok());
        EXPECT_EQ(opened.error(), CryptoError::decryptionFailed);
    }
}

TEST(AesGcmTest, EncryptUsesAFreshNonceEachTimeAndDecryptOpensIt) {
    const auto key = SymmetricKey::random();
    ASSERT_TRUE(key.has_value());
    const auto payload = asBytes("{\"organization\":\"Acme\"}");
    const auto first = CryptoManager::encrypt(payload, *key);
    const auto second = CryptoManager::encrypt(payload, *key);
    ASSERT_TRUE(first.ok() && second.ok());
    EXPECT_EQ(first.value().size(), payload.size() + AesGcm::overhead);
    EXPECT_FALSE(
        std::equal(first.value().begin(), first.value().begin() + 12, second.value().begin()));
    EXPECT_NE(first.value(), second.value());

    const auto opened = CryptoManager::decrypt(first.value(), *key);
    ASSERT_TRUE(opened.ok());
    EXPECT_TRUE(
        std::equal(payload.begin(), payload.end(), opened.value().begin(), opened.value().end()));
}

} // namespace
