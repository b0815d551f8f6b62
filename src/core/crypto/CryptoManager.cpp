// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/CryptoManager.h"

#include "crypto/AesGcm.h"
#include "crypto/Base64.h"
#include "crypto/Hkdf.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <cstdio>

namespace vorlane {

namespace {

bool isValidUtf8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        if (c < 0) {
            return false;
        }
    }
    return true;
}

} // namespace

CryptoManager::CryptoManager(const Clock& clock)
    : m_clock(clock) {}

Bytes CryptoManager::generateSalt() {
    Bytes salt(ExportBundle::saltSize, 0);
    RAND_bytes(salt.data(), static_cast<int>(salt.size()));
    return salt;
}

std::optional<SymmetricKey> CryptoManager::deriveKey(std::string_view password,
                                                     std::span<const std::uint8_t> salt) {
    if (password.size() > INT32_MAX || !isValidUtf8(password)) {
        return std::nullopt;
    }
    auto output =
        Hkdf::sha256(asBytes(password), salt, asBytes(keyDerivationInfo), SymmetricKey::size);
    if (!output) {
        return std::nullopt;
    }
    auto key = SymmetricKey::fromBytes(*output);
    OPENSSL_cleanse(output->data(), output->size());
    return key;
}

CryptoResult<Bytes> CryptoManager::encrypt(std::span<const std::uint8_t> data,
                                           const SymmetricKey& key) {
    const auto nonce = AesGcm::randomNonce();
    if (!nonce) {
        return CryptoError::encryptionFailed;
    }
    return AesGcm::seal(data, key, *nonce);
}

CryptoResult<Bytes> CryptoManager::decrypt(std::span<const std::uint8_t> combined,
                                           const SymmetricKey& key) {
    return AesGcm::open(combined, key);
}

std::string CryptoManager::keyToBase64(const SymmetricKey& key) {
    return Base64::encode(key.bytes());
}

std::optional<SymmetricKey> CryptoManager::keyFromBase64(std::string_view text) {
    auto bytes = Base64::decode(text);
    if (!bytes) {
        return std::nullopt;
    }
    auto key = SymmetricKey::fromBytes(*bytes);
    OPENSSL_cleanse(bytes->data(), bytes->size());
    return key;
}

std::string CryptoManager::integrityOf(std::span<const std::uint8_t> payload) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(payload.data(), payload.size(), digest, &length, EVP_sha256(), nullptr) != 1) {
        // Only a broken OpenSSL installation gets here; no digest matches this text.
        return {};
    }
    std::string hex;
    hex.reserve(2 * length);
    for (unsigned int i = 0; i < length; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", digest[i]);
        hex.append(pair, 2);
    }
    return hex;
}

CryptoResult<CryptoManager::SealedExport>
CryptoManager::createExportBundle(std::span<const std::uint8_t> payload,
                                  std::optional<std::string_view> password) const {
    ExportBundle bundle;
    bundle.integrity = integrityOf(payload);
    if (bundle.integrity.empty()) {
        return CryptoError::encryptionFailed;
    }

    std::optional<SymmetricKey> key;
    std::optional<std::string> keyText;
    if (!password || password->empty()) {
        key = SymmetricKey::random();
        if (!key) {
            return CryptoError::encryptionFailed;
        }
        keyText = keyToBase64(*key);
    } else {
        bundle.salt = generateSalt();
        key = deriveKey(*password, bundle.salt);
        if (!key) {
            return CryptoError::keyDerivationFailed;
        }
    }

    auto sealed = encrypt(payload, *key);
    if (!sealed) {
        if (keyText) {
            OPENSSL_cleanse(keyText->data(), keyText->size());
        }
        return sealed.error();
    }
    bundle.encryptedPayload = std::move(sealed).value();
    bundle.createdAt = m_clock.now();
    return SealedExport{std::move(bundle), std::move(keyText)};
}

} // namespace vorlane
