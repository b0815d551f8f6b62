// SPDX-License-Identifier: GPL-3.0-or-later
// One-time codes: RFC 6238's own known answers, agreement with oathtool (the reference
// implementation Debian ships) for random keys and times, and what the secret field accepts.

#include "totp/Totp.h"

#include "Hex.h"
#include "RunCommand.h"
#include "totp/Base32.h"
#include "totp/TotpSecret.h"

#include <gtest/gtest.h>
#include <openssl/rand.h>

#include <chrono>
#include <random>

namespace vorlane {
namespace {

using Algorithm = TotpSecret::Algorithm;
using testing::runReferenceTool;
using testing::shellWord;

Instant atSecond(std::int64_t seconds) {
    return Instant(std::chrono::seconds(seconds));
}

TotpSecret secretOf(std::string_view key, Algorithm algorithm, int digits, int period = 30) {
    TotpSecret secret;
    secret.key.assign(key.begin(), key.end());
    secret.algorithm = algorithm;
    secret.digits = digits;
    secret.periodSeconds = period;
    return secret;
}

TEST(TotpTest, MatchesTheKnownAnswersOfRfc6238ForEveryHash) {
    // Appendix B of RFC 6238: each hash has its own seed of the hash's length.
    const TotpSecret sha1 = secretOf("12345678901234567890", Algorithm::sha1, 8);
    const TotpSecret sha256 = secretOf("12345678901234567890123456789012", Algorithm::sha256, 8);
    const TotpSecret sha512 = secretOf(
        "1234567890123456789012345678901234567890123456789012345678901234", Algorithm::sha512, 8);
    struct Vector {
        std::int64_t time;
        const char* sha1;
        const char* sha256;
        const char* sha512;
    };
    for (const Vector& v : std::initializer_list<Vector>{
             {59, "94287082", "46119246", "90693936"},
             {1111111109, "07081804", "68084774", "25091201"},
             {1111111111, "14050471", "67062674", "99943326"},
             {1234567890, "89005924", "91819424", "93441116"},
             {2000000000, "69279037", "90698825", "38618901"},
             {20000000000, "65353130", "77737706", "47863826"},
         }) {
        EXPECT_EQ(Totp::at(sha1, atSecond(v.time)).digits, v.sha1) << v.time;
        EXPECT_EQ(Totp::at(sha256, atSecond(v.time)).digits, v.sha256) << v.time;
        EXPECT_EQ(Totp::at(sha512, atSecond(v.time)).digits, v.sha512) << v.time;
    }
}

TEST(TotpTest, AgreesWithOathtoolForRandomKeysTimesAndParameters) {
    std::mt19937_64 pick(20261124);
    const std::pair<Algorithm, const char*> hashes[] = {
        {Algorithm::sha1, "sha1"}, {Algorithm::sha256, "sha256"}, {Algorithm::sha512, "sha512"}};
    for (int round = 0; round < 36; ++round) {
        const auto& [algorithm, name] = hashes[round % 3];
        TotpSecret secret;
        secret.algorithm = algorithm;
        secret.digits = round % 2 == 0 ? 6 : 8;
        secret.periodSeconds = round % 4 < 2 ? 30 : 60;
        secret.key.resize(10 + pick() % 55);
        ASSERT_EQ(RAND_bytes(secret.key.data(), static_cast<int>(secret.key.size())), 1);
        const auto time = static_cast<std::int64_t>(pick() % 8'000'000'000ULL);
        const auto run = runReferenceTool(
            "oathtool --totp=" + std::string(name) + " -d " + std::to_string(secret.digits) +
            " -s " + std::to_string(secret.periodSeconds) + " -N " +
            shellWord("@" + std::to_string(time)) + " " + testing::toHex(secret.key));
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(Totp::at(secret, atSecond(time)).digits + "\n", run.out)
            << name << " at " << time << " key " << testing::toHex(secret.key);
    }
}

TEST(TotpTest, AnOtpauthUriGivesTheCodeOathtoolGivesForItsSecret) {
    const auto parsed = TotpSecret::parse(
        "otpauth://totp/Acme:ops@acme.example?secret=JBSWY3DPEHPK3PXP&issuer=Acme");
    ASSERT_TRUE(parsed.ok());
    EXPECT_EQ(parsed.value().issuer, "Acme");
    EXPECT_EQ(parsed.value().account, "ops@acme.example");
    for (const std::int64_t time : {0LL, 1'700'000'029LL, 1'764'000'000LL}) {
        const auto run =
            runReferenceTool("oathtool --totp -b JBSWY3DPEHPK3PXP -N @" + std::to_string(time));
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(Totp::at(parsed.value(), atSecond(time)).digits + "\n", run.out) << time;
    }
}

TEST(TotpTest, TheSecondsLeftCountDownToTheEndOfThePeriod) {
    const TotpSecret secret = secretOf("12345678901234567890", Algorithm::sha1, 6, 60);
    EXPECT_EQ(Totp::at(secret, atSecond(120)).validFor, 60);
    EXPECT_EQ(Totp::at(secret, Instant(std::chrono::milliseconds(120'999))).validFor, 60);
    EXPECT_EQ(Totp::at(secret, atSecond(179)).validFor, 1);
    EXPECT_EQ(Totp::at(secret, atSecond(179)).digits, Totp::at(secret, atSecond(120)).digits);
    EXPECT_NE(Totp::at(secret, atSecond(180)).digits, Totp::at(secret, atSecond(179)).digits);
    EXPECT_EQ(Totp::grouped("123456"), "123 456");
    EXPECT_EQ(Totp::grouped("12345678"), "1234 5678");
}

TEST(TotpTest, ReadsUriParametersAndBareSecretsAsPeopleTypeThem) {
    const auto full = TotpSecret::parse(
        "  otpauth://totp/Big%20Host%3Aroot?SECRET=jbswy3dpehpk3pxp&algorithm=SHA512&digits=8"
        "&period=60&issuer=Big+Host\n");
    ASSERT_TRUE(full.ok());
    EXPECT_EQ(full.value().algorithm, Algorithm::sha512);
    EXPECT_EQ(full.value().digits, 8);
    EXPECT_EQ(full.value().periodSeconds, 60);
    EXPECT_EQ(full.value().issuer, "Big Host");
    EXPECT_EQ(full.value().account, "root");
    EXPECT_EQ(full.value().key, *Base32::decode("JBSWY3DPEHPK3PXP"));

    const auto bare = TotpSecret::parse("jbsw y3dp ehpk 3pxp");
    ASSERT_TRUE(bare.ok());
    EXPECT_EQ(bare.value().algorithm, Algorithm::sha1);
    EXPECT_EQ(bare.value().digits, 6);
    EXPECT_EQ(bare.value().periodSeconds, 30);
    EXPECT_EQ(bare.value().key, full.value().key);
    EXPECT_TRUE(TotpSecret::isValid("GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ"));
    EXPECT_TRUE(TotpSecret::isValid("JBSWY3DPEHPK3PXP===="));
}

TEST(TotpTest, RefusesWhatNoAuthenticatorWouldAccept) {
    for (const char* bad : {
             "",
             "hunter2",                                               // not base32
             "JBSWY3DP",                                              // too short to be a key
             "JBSWY3DPEHPK3PXPA",                                     // 17 symbols: no whole bytes
             "JBSW=Y3DPEHPK3PXP",                                     // padding in the middle
             "otpauth://hotp/Acme?secret=JBSWY3DPEHPK3PXP&counter=1", // counter-based
             "otpauth://totp/Acme?issuer=Acme",                       // no secret
             "otpauth://totp/Acme?secret=JBSWY3DPEHPK3PXP&digits=7",
             "otpauth://totp/Acme?secret=JBSWY3DPEHPK3PXP&period=45",
             "otpauth://totp/Acme?secret=JBSWY3DPEHPK3PXP&algorithm=MD5",
             "otpauth://totp/Acme%2?secret=JBSWY3DPEHPK3PXP", // broken escape
             "https://acme.example/?secret=JBSWY3DPEHPK3PXP",
         }) {
        const auto parsed = TotpSecret::parse(bad);
        ASSERT_FALSE(parsed.ok()) << bad;
        EXPECT_EQ(parsed.error(), "Not a valid one-time code secret") << bad;
    }
}

} // namespace
} // namespace vorlane
