// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/BundleReader.h"

#include "crypto/CryptoManager.h"

#include <openssl/crypto.h>

namespace vorlane {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view whitespace = " \t\r\n";
    const auto first = text.find_first_not_of(whitespace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(whitespace) - first + 1);
}

} // namespace

bool BundleReader::needsPassword(const ExportBundle& bundle) {
    return !bundle.salt.empty();
}

CryptoResult<Bytes> BundleReader::open(const ExportBundle& bundle, std::string_view secret) {
    std::optional<SymmetricKey> key;
    if (needsPassword(bundle)) {
        if (secret.empty()) {
            return CryptoError::passwordRequired;
        }
        key = CryptoManager::deriveKey(secret, bundle.salt);
        if (!key) {
            return CryptoError::keyDerivationFailed;
        }
    } else {
        key = CryptoManager::keyFromBase64(trimmed(secret));
        if (!key) {
            return CryptoError::invalidKey;
        }
    }

    auto payload = CryptoManager::decrypt(bundle.encryptedPayload, *key);
    if (!payload) {
        return payload.error();
    }
    if (CryptoManager::integrityOf(payload.value()) != bundle.integrity) {
        OPENSSL_cleanse(payload.value().data(), payload.value().size());
        return CryptoError::integrityCheckFailed;
    }
    return payload;
}

} // namespace vorlane
