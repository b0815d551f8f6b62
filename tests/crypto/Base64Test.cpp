// SPDX-License-Identifier: GPL-3.0-or-later
// Standard base64 as bundles and generated keys carry it.

#include "crypto/Base64.h"

#include <gtest/gtest.h>

namespace {

using namespace vorlane;

std::string decodedText(std::string_view base64) {
    const auto bytes = Base64::decode(base64);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "<invalid>";
}

TEST(Base64Test, EncodesAndDecodesTheRfc4648Examples) {
    const std::pair<const char*, const char*> examples[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
    };
    for (const auto& [plain, encoded] : examples) {
        SCOPED_TRACE(plain);
        EXPECT_EQ(Base64::encode(asBytes(plain)), encoded);
        EXPECT_EQ(decodedText(encoded), plain);
    }
}

TEST(Base64Test, UsesTheStandardAlphabetAndRoundTripsEveryByte) {
    Bytes all(256);
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = static_cast<std::uint8_t>(i);
    }
    const std::string text = Base64::encode(all);
    EXPECT_NE(text.find('+'), std::string::npos);
    EXPECT_NE(text.find('/'), std::string::npos);
    EXPECT_EQ(text.find_first_of("-_\n"), std::string::npos);
    EXPECT_EQ(Base64::decode(text), all);
    EXPECT_EQ(Base64::encode(Bytes{0xFB, 0xFF}), "+/8=");
}

TEST(Base64Test, RejectsAnythingButStrictPaddedBase64) {
    const char* malformed[] = {
        "Zg",        // padding left off
        "Zg=",       // length not a multiple of four
        "Z===",      // too much padding
        "Zg==Zg==",  // padding in the middle
        "Zm9v\n",    // a line break
        "Zm 9",      // a space
        "Zm9-",      // URL-safe alphabet
        "Zm9_",      // URL-safe alphabet
        "Zh==",      // stray bits after the last byte ("Zg==" is the real one)
        "Zm9=",      // stray bits after the last byte ("Zm8=" is the real one)
        "=Zm9",      // padding first
        "Zm\xC3\xA9" // not ASCII
    };
    for (const char* text : malformed) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(Base64::decode(text).has_value());
    }
}

} // namespace
