// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/SymmetricKey.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <algorithm>

namespace vorlane {

std::optional<SymmetricKey> SymmetricKey::fromBytes(std::span<const std::uint8_t> bytes) {
    if (bytes.size() != size) {
        return std::nullopt;
    }
    SymmetricKey key;
    std::copy(bytes.begin(), bytes.end(), key.m_bytes.begin());
    return key;
}

std::optional<SymmetricKey> SymmetricKey::random() {
    SymmetricKey key;
    if (RAND_bytes(key.m_bytes.data(), static_cast<int>(size)) != 1) {
        return std::nullopt;
    }
    return key;
}

SymmetricKey::SymmetricKey(SymmetricKey&& other) noexcept
    : m_bytes(other.m_bytes) {
    other.wipe();
}

SymmetricKey& SymmetricKey::operator=(SymmetricKey&& other) noexcept {
    if (this != &other) {
        m_bytes = other.m_bytes;
        other.wipe();
    }
    return *this;
}

SymmetricKey::~SymmetricKey() {
    wipe();
}

void SymmetricKey::wipe() {
    // OPENSSL_cleanse, unlike memset, is not removed by the optimiser as a dead store.
    OPENSSL_cleanse(m_bytes.data(), m_bytes.size());
}

} // namespace vorlane
