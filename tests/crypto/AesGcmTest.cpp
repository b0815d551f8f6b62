// SPDX-License-Identifier: GPL-3.0-or-later
// AES-256-GCM against the published known-answer vectors (McGrew and Viega, "The Galois/Counter
// Mode of Operation", test cases 13 to 15: 256-bit keys, no additional data), through the same
// seal and open that bundles use.

#include "crypto/AesGcm.h"

#include "Hex.h"

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

// Sealing with the vector's nonce gives exactly nonce, ciphertext and tag; opening that gives the
// plaintext back.
TEST(AesGcmTest, SealAndOpenMatchThePublishedVectors) {
    for (const GcmVector& vector : vectors) {
        SCOPED_TRACE(vector.name);
        const std::string combined = std::string(vector.nonce) + vector.ciphertext + vector.tag;
        const auto sealed =
            AesGcm::seal(fromHex(vector.plaintext), keyFrom(vector.key), nonceFrom(vector.nonce));
        ASSERT_TRUE(sealed.ok());
        EXPECT_EQ(toHex(sealed.value()), combined);
        const auto opened = AesGcm::open(fromHex(combined), keyFrom(vector.key));
        ASSERT_TRUE(opened.ok());
        EXPECT_EQ(toHex(opened.value()), vector.plaintext);
    }
}

} // namespace
