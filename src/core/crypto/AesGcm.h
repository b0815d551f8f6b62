// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"
#include "crypto/CryptoResult.h"
#include "crypto/SymmetricKey.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vorlane {

// AES-256-GCM through OpenSSL's EVP interface, in the combined form that export bundles carry:
// the 12-byte nonce, then the ciphertext (as long as the plaintext), then the 16-byte tag.
// Optional additional authenticated data (a backup file's header) is bound to the tag without
// being encrypted: opening needs the same bytes, and fails when one of them changed.
class AesGcm {
public:
    static constexpr std::size_t nonceSize = 12;
    static constexpr std::size_t tagSize = 16;
    // How much longer a sealed box is than its plaintext.
    static constexpr std::size_t overhead = nonceSize + tagSize;
    using Nonce = std::array<std::uint8_t, nonceSize>;

    // A fresh nonce from the secure random source; nothing if that source fails.
    static std::optional<Nonce> randomNonce();
    // Seals `plaintext` with the given nonce. A nonce must never be used twice under one key:
    // real callers pass randomNonce(), known-answer tests the vector's. encryptionFailed when
    // OpenSSL refuses.
    static CryptoResult<Bytes> seal(std::span<const std::uint8_t> plaintext,
                                    const SymmetricKey& key, const Nonce& nonce,
                                    std::span<const std::uint8_t> associatedData = {});
    // Opens a combined form. decryptionFailed when it is too short to hold a nonce and a tag, or
    // when the tag does not match (a wrong key or any altered byte); no plaintext is returned
    // then, not even in part.
    static CryptoResult<Bytes> open(std::span<const std::uint8_t> combined, const SymmetricKey& key,
                                    std::span<const std::uint8_t> associatedData = {});
};

} // namespace vorlane
