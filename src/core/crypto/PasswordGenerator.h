#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// Random passwords for the service form's "Generate" button, drawn from the system's secure
// random source (OpenSSL's RAND_bytes). Each character is picked uniformly from `alphabet`
// (letters, digits and symbols, but no quotes, backslashes or spaces, which break a password
// pasted into a shell or a configuration file), by rejection sampling so that no character is
// likelier than another.
// Nothing when the random source fails. Any thread.
class PasswordGenerator {
public:
    static constexpr std::size_t defaultLength = 20;
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!#$%&*+-=?@^_~";

    static std::optional<std::string> generate(std::size_t length = defaultLength);
};

} // namespace vorlane
