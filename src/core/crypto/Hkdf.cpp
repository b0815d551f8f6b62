// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/Hkdf.h"

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/kdf.h>
#include <openssl/params.h>

#include <memory>

namespace vorlane {

namespace {

struct KdfFree {
    void operator()(EVP_KDF* kdf) const { EVP_KDF_free(kdf); }
    void operator()(EVP_KDF_CTX* context) const { EVP_KDF_CTX_free(context); }
};

// OpenSSL's parameter API takes non-const pointers even for inputs it only reads.
void* inputPointer(std::span<const std::uint8_t> bytes) {
    return const_cast<std::uint8_t*>(bytes.data());
}

} // namespace

std::optional<Bytes> Hkdf::sha256(std::span<const std::uint8_t> inputKeyMaterial,
                                  std::span<const std::uint8_t> salt,
                                  std::span<const std::uint8_t> info, std::size_t length) {
    const std::unique_ptr<EVP_KDF, KdfFree> kdf(EVP_KDF_fetch(nullptr, "HKDF", nullptr));
    if (!kdf) {
        return std::nullopt;
    }
    const std::unique_ptr<EVP_KDF_CTX, KdfFree> context(EVP_KDF_CTX_new(kdf.get()));
    if (!context) {
        return std::nullopt;
    }
    char digest[] = "SHA256";
    // An empty salt is not passed at all: RFC 5869 then uses a block of zeros, which is also what
    // an empty salt means there.
    OSSL_PARAM params[5];
    std::size_t count = 0;
    params[count++] = OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest, 0);
    params[count++] = OSSL_PARAM_construct_octet_string(
        OSSL_KDF_PARAM_KEY, inputPointer(inputKeyMaterial), inputKeyMaterial.size());
    if (!salt.empty()) {
        params[count++] =
            OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_SALT, inputPointer(salt), salt.size());
    }
    params[count++] =
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_INFO, inputPointer(info), info.size());
    params[count] = OSSL_PARAM_construct_end();

    Bytes output(length);
    if (EVP_KDF_derive(context.get(), output.data(), output.size(), params) != 1) {
        OPENSSL_cleanse(output.data(), output.size());
        return std::nullopt;
    }
    return output;
}

} // namespace vorlane
