// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/CryptoError.h"

namespace vorlane {

std::string_view errorDescription(CryptoError error) {
    switch (error) {
    case CryptoError::encryptionFailed:
        return "Failed to encrypt data.";
    case CryptoError::decryptionFailed:
        return "Failed to decrypt data.";
    case CryptoError::keyDerivationFailed:
        return "Failed to derive encryption key.";
    case CryptoError::passwordRequired:
        return "A password is required to decrypt this bundle.";
    case CryptoError::invalidKey:
        return "The provided decryption key is invalid.";
    case CryptoError::integrityCheckFailed:
        return "Data integrity check failed. The data may have been tampered with.";
    }
    return "Failed to encrypt data.";
}

} // namespace vorlane
