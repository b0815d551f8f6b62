// SPDX-License-Identifier: GPL-3.0-or-later
// The bundle file's bytes, and reading them back.

#include "crypto/ExportBundle.h"

#include "Hex.h"
#include "TestTime.h"
#include "share/ExportPayload.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace vorlane;
using vorlane::testing::fromHex;
using vorlane::testing::utc;

// Base64 of these bytes is full of "/" and "+".
ExportBundle sampleBundle() {
    ExportBundle bundle;
    bundle.salt = fromHex("ffffff030405060708090a0b0c0d0e0f101112131415161718191a1b1cfbffbf");
    bundle.encryptedPayload = fromHex("fffffffbefbe001083");
    bundle.createdAt = utc(2024, 5, 17, 9, 30) + std::chrono::milliseconds(250);
    bundle.integrity = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    return bundle;
}

TEST(ExportBundleTest, JsonIsCompactOrderedWithEscapedSlashesByteForByte) {
    EXPECT_EQ(sampleBundle().toJson(),
              R"({"version":1,"salt":"\/\/\/\/AwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxz7\/78=",)"
              R"("encryptedPayload":"\/\/\/\/++++ABCD","createdAt":737631000.25,)"
              R"("integrity":"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"})");
}

TEST(ExportBundleTest, EmptySaltIsAnEmptyStringAndTimesCountFrom2001) {
    ExportBundle bundle = sampleBundle();
    bundle.salt.clear();
    bundle.createdAt = utc(2001, 1, 1) + std::chrono::milliseconds(1500);
    const std::string json = bundle.toJson();
    EXPECT_NE(json.find(R"("salt":"",)"), std::string::npos) << json;
    EXPECT_NE(json.find(R"("createdAt":1.5,)"), std::string::npos) << json;
}

// Whole seconds are written as integers, the way the other platforms' encoder writes them; a
// reader comparing bytes (or a strict integer field) would otherwise see "762879600.0".
TEST(ExportBundleTest, WholeSecondsOfBundleAndPayloadAreWrittenWithoutAFraction) {
    ExportBundle bundle = sampleBundle();
    bundle.createdAt = utc(2025, 3, 5, 15);
    EXPECT_NE(bundle.toJson().find(R"("createdAt":762879600,)"), std::string::npos)
        << bundle.toJson();
    bundle.createdAt = utc(2001, 1, 1);
    EXPECT_NE(bundle.toJson().find(R"("createdAt":0,)"), std::string::npos) << bundle.toJson();

    ExportPayload payload;
    payload.organizationName = "Acme";
    payload.exportDate = utc(2025, 3, 5, 15);
    EXPECT_EQ(payload.toJson(),
              R"({"organizationName":"Acme","projectName":"","exportDate":762879600,"items":[]})");
    payload.exportDate = utc(2025, 3, 5, 15) + std::chrono::milliseconds(1);
    EXPECT_NE(payload.toJson().find(R"("exportDate":762879600.001,)"), std::string::npos)
        << payload.toJson();
}

TEST(ExportBundleTest, ReadsBackWhatItWrites) {
    ExportBundle minimal;
    minimal.integrity = std::string(64, '0');
    minimal.createdAt = utc(1999, 12, 31, 23, 59) + std::chrono::milliseconds(1);
    for (const ExportBundle& bundle : {sampleBundle(), minimal}) {
        const auto read = ExportBundle::fromJson(bundle.toJson());
        ASSERT_TRUE(read.ok()) << read.error();
        EXPECT_EQ(read.value(), bundle);
    }
}

TEST(ExportBundleTest, ReadsUnescapedSlashesWhitespaceAndExtraMembersToo) {
    const auto read = ExportBundle::fromJson(
        "{ \"integrity\": \"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\",\n"
        "  \"createdAt\": 737631000,\n  \"encryptedPayload\": \"////++++ABCD\",\n"
        "  \"salt\": \"\", \"version\": 1, \"comment\": \"for Acme\" }\n");
    ASSERT_TRUE(read.ok()) << read.error();
    EXPECT_EQ(read.value().encryptedPayload, fromHex("fffffffbefbe001083"));
    EXPECT_EQ(read.value().createdAt, utc(2024, 5, 17, 9, 30));
}

TEST(ExportBundleTest, MalformedFilesSayWhatIsWrong) {
    const std::string good = sampleBundle().toJson();
    auto replaced = [&](std::string_view from, std::string_view to) {
        std::string text = good;
        const auto at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", "This file is not a Vorlane export bundle: it is not valid JSON."},
        {"PK\x03\x04 zip", "This file is not a Vorlane export bundle: it is not valid JSON."},
        {good.substr(0, good.size() - 1),
         "This file is not a Vorlane export bundle: it is not valid JSON."},
        {"[1,2]", "This file is not a Vorlane export bundle: it is not a JSON object."},
        {replaced("\"salt\"", "\"pepper\""),
         "This file is not a Vorlane export bundle: it has no \"salt\"."},
        {replaced("\"version\":1", "\"version\":2"),
         "This export bundle has format version 2, which this version of Vorlane cannot open."},
        {replaced("\"version\":1", "\"version\":\"1\""),
         "This export bundle is damaged: \"version\" is not a whole number."},
        {replaced("ABCD", "AB-D"),
         "This export bundle is damaged: \"encryptedPayload\" is not valid base64."},
        {replaced("\"encryptedPayload\":\"", "\"encryptedPayload\":\"A"),
         "This export bundle is damaged: \"encryptedPayload\" is not valid base64."},
        {replaced("\\/78=", "7w=="),
         "This export bundle is damaged: \"salt\" is neither empty nor 32 bytes long."},
        {replaced("\"salt\":\"", "\"salt\":null,\"x\":\""),
         "This export bundle is damaged: \"salt\" is not a text."},
        {replaced("737631000.25", "\"yesterday\""),
         "This export bundle is damaged: \"createdAt\" is not a number."},
        {replaced("737631000.25", "1e300"),
         "This export bundle is damaged: \"createdAt\" is not a plausible time."},
        {replaced("ba7816bf", "BA7816BF"),
         "This export bundle is damaged: \"integrity\" is not a SHA-256 digest in hexadecimal."},
        {replaced("15ad\"", "15\""),
         "This export bundle is damaged: \"integrity\" is not a SHA-256 digest in hexadecimal."},
    };
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        const auto read = ExportBundle::fromJson(text);
        ASSERT_FALSE(read.ok());
        EXPECT_EQ(read.error(), message);
    }
}

} // namespace
