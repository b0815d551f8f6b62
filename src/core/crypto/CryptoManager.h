// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"
#include "crypto/CryptoResult.h"
#include "crypto/ExportBundle.h"
#include "crypto/SymmetricKey.h"
#include "util/Clock.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorlane {

// Seals export payloads into bundles: AES-256-GCM under a key derived with HKDF-SHA256 from the
// export password and a fresh salt, or under a random key handed back as base64 text. Holds no
// state of its own (the clock only stamps "createdAt"); one instance serves every call, from any
// thread. The functions that need no clock are static, so a reader can use them without one.
class CryptoManager {
public:
    // The HKDF info label: binds derived keys to this one use of the password.
    static constexpr std::string_view keyDerivationInfo = "com.vorlane.export";

    struct SealedExport {
        ExportBundle bundle;
        // The generated key as base64 text when no password was given, for the user to pass on
        // (the caller shows it and wipes it); nothing when a password was used.
        std::optional<std::string> key;
    };

    explicit CryptoManager(const Clock& clock);

    // 32 bytes from the secure random source. A failing source is not reported: a salt only has
    // to differ between bundles, not stay secret, and RAND_bytes does not fail once seeded.
    static Bytes generateSalt();
    // HKDF-SHA256 of the password's UTF-8 bytes, used as they are (no stretching), with `salt`,
    // the info label and 32 bytes of output. Nothing when the password is not valid UTF-8 or
    // OpenSSL refuses. Does not keep or copy the password.
    static std::optional<SymmetricKey> deriveKey(std::string_view password,
                                                 std::span<const std::uint8_t> salt);
    // AES-GCM seal under a fresh random nonce: nonce, ciphertext, tag. encryptionFailed when no
    // nonce can be drawn or OpenSSL refuses.
    static CryptoResult<Bytes> encrypt(std::span<const std::uint8_t> data, const SymmetricKey& key);
    // The inverse of encrypt: decryptionFailed for a wrong key or any altered byte.
    static CryptoResult<Bytes> decrypt(std::span<const std::uint8_t> combined,
                                       const SymmetricKey& key);
    // The key's 32 bytes in standard base64: 44 characters ending in "=".
    static std::string keyToBase64(const SymmetricKey& key);
    // The inverse of keyToBase64; nothing unless the text is base64 of exactly 32 bytes.
    static std::optional<SymmetricKey> keyFromBase64(std::string_view text);
    // SHA-256 of `payload` as 64 lowercase hexadecimal digits: the bundle's "integrity".
    static std::string integrityOf(std::span<const std::uint8_t> payload);

    // Seals `payload`. No password, or an empty one, means a random key that is returned as
    // text, and an empty salt. keyDerivationFailed or encryptionFailed, and nothing else
    // produced, when a step fails. Does not keep or copy the password.
    CryptoResult<SealedExport> createExportBundle(std::span<const std::uint8_t> payload,
                                                  std::optional<std::string_view> password) const;

private:
    const Clock& m_clock;
};

} // namespace vorlane
