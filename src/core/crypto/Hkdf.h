// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vorlane {

// HKDF with SHA-256 (RFC 5869: extract, then expand) through OpenSSL's EVP_KDF "HKDF".
// CryptoManager::deriveKey fixes the info label and length for export keys; the general form is
// here so that it can be checked against the RFC's own vectors.
class Hkdf {
public:
    // `length` bytes of output keying material (at most 255 * 32); nothing when OpenSSL refuses.
    // The caller owns the result and wipes it.
    static std::optional<Bytes> sha256(std::span<const std::uint8_t> inputKeyMaterial,
                                       std::span<const std::uint8_t> salt,
                                       std::span<const std::uint8_t> info, std::size_t length);
};

} // namespace vorlane
