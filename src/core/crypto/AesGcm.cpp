// SPDX-License-Identifier: GPL-3.0-or-later
#include "crypto/AesGcm.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <memory>

namespace vorlane {

namespace {

struct CipherContextFree {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextFree>;

// EVP_*Update takes an int length; larger inputs go through in slices of this size.
constexpr std::size_t sliceSize = std::size_t{1} << 30;

// Runs EVP_EncryptUpdate or EVP_DecryptUpdate over all of `input` into `output`.
template <typename Update>
bool updateAll(Update update, EVP_CIPHER_CTX* context, std::span<const std::uint8_t> input,
               std::uint8_t* output) {
    std::size_t done = 0;
    while (done < input.size()) {
        const std::size_t slice = std::min(sliceSize, input.size() - done);
        int written = 0;
        if (update(context, output + done, &written, input.data() + done,
                   static_cast<int>(slice)) != 1 ||
            static_cast<std::size_t>(written) != slice) {
            return false;
        }
        done += slice;
    }
    return true;
}

// Feeds the additional authenticated data (none when empty) after the key and nonce are set.
template <typename Update>
bool associate(Update update, EVP_CIPHER_CTX* context, std::span<const std::uint8_t> data) {
    if (data.empty()) {
        return true;
    }
    if (data.size() > sliceSize) {
        return false;
    }
    int written = 0;
    return update(context, nullptr, &written, data.data(), static_cast<int>(data.size())) == 1;
}

} // namespace

std::optional<AesGcm::Nonce> AesGcm::randomNonce() {
    Nonce nonce{};
    if (RAND_bytes(nonce.data(), static_cast<int>(nonce.size())) != 1) {
        return std::nullopt;
    }
    return nonce;
}

CryptoResult<Bytes> AesGcm::seal(std::span<const std::uint8_t> plaintext, const SymmetricKey& key,
                                 const Nonce& nonce, std::span<const std::uint8_t> associatedData) {
    const CipherContext context(EVP_CIPHER_CTX_new());
    Bytes combined(nonceSize + plaintext.size() + tagSize);
    std::copy(nonce.begin(), nonce.end(), combined.begin());
    std::uint8_t* const ciphertext = combined.data() + nonceSize;
    std::uint8_t* const tag = ciphertext + plaintext.size();
    int finalWritten = 0;
    // GCM's default nonce length is 12 bytes, so no EVP_CTRL_GCM_SET_IVLEN is needed.
    const bool sealed =
        context &&
        EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.bytes().data(),
                           nonce.data()) == 1 &&
        associate(EVP_EncryptUpdate, context.get(), associatedData) &&
        updateAll(EVP_EncryptUpdate, context.get(), plaintext, ciphertext) &&
        EVP_EncryptFinal_ex(context.get(), tag, &finalWritten) == 1 && finalWritten == 0 &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, static_cast<int>(tagSize), tag) ==
            1;
    if (!sealed) {
        return CryptoError::encryptionFailed;
    }
    return combined;
}

CryptoResult<Bytes> AesGcm::open(std::span<const std::uint8_t> combined, const SymmetricKey& key,
                                 std::span<const std::uint8_t> associatedData) {
    if (combined.size() < overhead) {
        return CryptoError::decryptionFailed;
    }
    const auto nonce = combined.first(nonceSize);
    const auto ciphertext = combined.subspan(nonceSize, combined.size() - overhead);
    // The tag control takes a non-const buffer although it only reads it when decrypting.
    std::array<std::uint8_t, tagSize> tag{};
    std::copy_n(combined.end() - static_cast<std::ptrdiff_t>(tagSize), tagSize, tag.begin());

    const CipherContext context(EVP_CIPHER_CTX_new());
    Bytes plaintext(ciphertext.size());
    int finalWritten = 0;
    const bool opened =
        context &&
        EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.bytes().data(),
                           nonce.data()) == 1 &&
        associate(EVP_DecryptUpdate, context.get(), associatedData) &&
        updateAll(EVP_DecryptUpdate, context.get(), ciphertext, plaintext.data()) &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, static_cast<int>(tagSize),
                            tag.data()) == 1 &&
        EVP_DecryptFinal_ex(context.get(), plaintext.data() + plaintext.size(), &finalWritten) == 1;
    if (!opened) {
        // Unauthenticated plaintext must not survive in memory either.
        OPENSSL_cleanse(plaintext.data(), plaintext.size());
        return CryptoError::decryptionFailed;
    }
    return plaintext;
}

} // namespace vorlane
