#include "crypto/PasswordGenerator.h"

#include <openssl/rand.h>

#include <array>
#include <cstdint>

namespace vorlane {

std::optional<std::string> PasswordGenerator::generate(std::size_t length) {
    // The largest multiple of the alphabet's size that fits a byte: bytes at or above it are
    // thrown away, since keeping them would favour the first characters.
    constexpr unsigned limit = 256 - (256 % alphabet.size());
    std::string password;
    password.reserve(length);
    std::array<std::uint8_t, 64> bytes{};
    while (password.size() < length) {
        if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
            return std::nullopt;
        }
        for (const std::uint8_t byte : bytes) {
            if (byte < limit && password.size() < length) {
                password.push_back(alphabet[byte % alphabet.size()]);
            }
        }
    }
    bytes.fill(0);
    return password;
}

} // namespace vorlane
