// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/Argon2id.h"

#include <argon2.h>
#include <openssl/crypto.h>

#include <limits>

namespace vorlane {

namespace {

// libargon2 takes non-const pointers for its inputs; without the clearing flags it only reads
// them.
std::uint8_t* inputPointer(std::span<const std::uint8_t> bytes) {
    return const_cast<std::uint8_t*>(bytes.data());
}

bool fitsLength(std::size_t size) {
    return size <= std::numeric_limits<std::uint32_t>::max();
}

} // namespace

std::optional<Bytes> Argon2id::derive(std::span<const std::uint8_t> password,
                                      std::span<const std::uint8_t> salt, const Cost& cost,
                                      std::size_t length, std::span<const std::uint8_t> secret,
                                      std::span<const std::uint8_t> associatedData) {
    if (!fitsLength(password.size()) || !fitsLength(salt.size()) || !fitsLength(secret.size()) ||
        !fitsLength(associatedData.size()) || !fitsLength(length)) {
        return std::nullopt;
    }
    Bytes output(length);
    argon2_context context{};
    context.out = output.data();
    context.outlen = static_cast<std::uint32_t>(length);
    context.pwd = inputPointer(password);
    context.pwdlen = static_cast<std::uint32_t>(password.size());
    context.salt = inputPointer(salt);
    context.saltlen = static_cast<std::uint32_t>(salt.size());
    context.secret = inputPointer(secret);
    context.secretlen = static_cast<std::uint32_t>(secret.size());
    context.ad = inputPointer(associatedData);
    context.adlen = static_cast<std::uint32_t>(associatedData.size());
    context.t_cost = cost.passes;
    context.m_cost = cost.memoryKiB;
    context.lanes = cost.lanes;
    context.threads = cost.lanes;
    context.version = ARGON2_VERSION_13;
    context.flags = ARGON2_DEFAULT_FLAGS;
    if (argon2_ctx(&context, Argon2_id) != ARGON2_OK) {
        OPENSSL_cleanse(output.data(), output.size());
        return std::nullopt;
    }
    return output;
}

} // namespace vorlane
