// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

// How many guesses an attacker who knows how people pick passwords needs for one: the cheapest
// way to write the password as a chain of pieces (common passwords and words, also capitalised
// or with digits for letters, runs of one character, repeated blocks, sequences such as "abc"
// or "9876", years), each costing the guesses of its kind, and brute force over the character
// classes used for everything else. It is an estimate for showing and for refusing obviously
// weak passwords, not a proof of strength. Pure function; any thread.
class PasswordStrength {
public:
    enum class Level { weak, fair, strong, veryStrong };

    struct Estimate {
        double log10Guesses = 0; // 0 for an empty password
        Level level = Level::weak;
    };

    // Below about 10^10 guesses a password is weak: minutes to hours for one computer when
    // every guess costs a single hash.
    static constexpr double weakBelowLog10 = 10;
    // A password that protects a file someone else may hold (an export, a backup) needs at
    // least this many characters besides a non-weak estimate.
    static constexpr std::size_t minimumEncryptionLength = 12;

    // Any UTF-8 text; invalid bytes count as characters of their own.
    static Estimate estimate(std::string_view password);

    // True when the password is long enough (in characters) and not weak: the bar for
    // encrypting exports and backups.
    static bool suitsEncryption(std::string_view password);
    // The password's length in characters, as the length bar above counts it (an invalid byte
    // counts as one).
    static std::size_t length(std::string_view password);

    // "Weak", "Fair", "Strong", "Very Strong".
    static std::string levelText(Level level);
    // The level and the guesses in words: "Fair: about 10^12 guesses".
    static std::string summary(const Estimate& estimate);
    // How full a meter of the estimate is, from 0 to 1: full at 10^20 guesses, so that a weak
    // password stays under half.
    static double meterFraction(const Estimate& estimate);
};

} // namespace vorlane
