// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace vorlane {

// Why sealing or opening an export bundle failed. Each case has one fixed sentence, shown to the
// user as it stands. The writer only ever raises encryptionFailed and keyDerivationFailed; the
// other four are what a recipient meets when opening a bundle.
enum class CryptoError {
    encryptionFailed,
    decryptionFailed,
    keyDerivationFailed,
    passwordRequired,
    invalidKey,
    integrityCheckFailed,
};

// The user-facing sentence for `error`.
std::string_view errorDescription(CryptoError error);

} // namespace vorlane
