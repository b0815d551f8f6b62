// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"
#include "crypto/CryptoResult.h"
#include "util/Instant.h"

#include <string>
#include <string_view>

namespace vorlane {

// One encrypted export, as written to a ".vorlane" file.
struct ExportBundle {
    static constexpr int currentVersion = 1;
    static constexpr std::size_t saltSize = 32;
    // The largest bundle file a reader takes (64 MiB): far above any export of a vault, and a
    // bound on what a hostile or endless file can make it read.
    static constexpr std::size_t largestFile = 64 * 1024 * 1024;

    int version = currentVersion;
    // 32 random bytes when the key came from a password; empty when it was generated.
    Bytes salt;
    // AES-GCM combined form: nonce, ciphertext, tag (the payload's length plus 28).
    Bytes encryptedPayload;
    Instant createdAt;
    // SHA-256 of the plaintext payload, 64 lowercase hexadecimal digits.
    std::string integrity;

    // The file's text: one compact JSON object with the members "version", "salt",
    // "encryptedPayload", "createdAt", "integrity" in this order; binary members in standard
    // base64; "createdAt" in seconds since 2001-01-01T00:00:00Z with the milliseconds as
    // fraction; every "/" escaped as "\/".
    std::string toJson() const;
    // Seconds since 2001-01-01T00:00:00Z, with the milliseconds as fraction: how the files
    // Vorlane exchanges write an instant.
    static double secondsSinceReferenceDate(Instant instant);

    // Reads that text back. A file that is not a bundle of a version we know gets a sentence
    // saying what is wrong with it; nothing is decrypted here.
    static CryptoResult<ExportBundle, std::string> fromJson(std::string_view json);

    friend bool operator==(const ExportBundle&, const ExportBundle&) = default;
};

} // namespace vorlane
