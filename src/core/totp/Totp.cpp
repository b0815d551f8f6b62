// SPDX-License-Identifier: GPL-3.0-or-later
#include "totp/Totp.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <chrono>

namespace vorlane {

namespace {

const EVP_MD* digestOf(TotpSecret::Algorithm algorithm) {
    switch (algorithm) {
    case TotpSecret::Algorithm::sha256:
        return EVP_sha256();
    case TotpSecret::Algorithm::sha512:
        return EVP_sha512();
    case TotpSecret::Algorithm::sha1:
        break;
    }
    return EVP_sha1();
}

} // namespace

std::string Totp::forCounter(const TotpSecret& secret, std::uint64_t counter) {
    std::array<unsigned char, 8> message{};
    for (int i = 7; i >= 0; --i) {
        message[static_cast<std::size_t>(i)] = static_cast<unsigned char>(counter & 0xff);
        counter >>= 8;
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> mac{};
    unsigned int macLength = 0;
    HMAC(digestOf(secret.algorithm), secret.key.data(), static_cast<int>(secret.key.size()),
         message.data(), message.size(), mac.data(), &macLength);
    // Dynamic truncation: the low four bits of the last byte pick where four bytes are read.
    const unsigned offset = mac[macLength - 1] & 0x0f;
    const std::uint32_t binary = (static_cast<std::uint32_t>(mac[offset] & 0x7f) << 24) |
                                 (static_cast<std::uint32_t>(mac[offset + 1]) << 16) |
                                 (static_cast<std::uint32_t>(mac[offset + 2]) << 8) |
                                 static_cast<std::uint32_t>(mac[offset + 3]);
    std::uint32_t modulus = 1;
    for (int i = 0; i < secret.digits; ++i) {
        modulus *= 10;
    }
    std::string digits = std::to_string(binary % modulus);
    mac.fill(0);
    return std::string(static_cast<std::size_t>(secret.digits) - digits.size(), '0') + digits;
}

Totp::Code Totp::at(const TotpSecret& secret, Instant now) {
    const auto seconds = std::max<std::int64_t>(
        0, std::chrono::floor<std::chrono::seconds>(now.time_since_epoch()).count());
    const auto period = static_cast<std::int64_t>(secret.periodSeconds);
    return {forCounter(secret, static_cast<std::uint64_t>(seconds / period)),
            static_cast<int>(period - seconds % period)};
}

std::string Totp::grouped(const std::string& digits) {
    const std::size_t half = digits.size() / 2;
    return digits.substr(0, half) + " " + digits.substr(half);
}

} // namespace vorlane
