// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// New passwords for every "Generate" button: random characters of the chosen classes, or a
// passphrase of dictionary words. Choices come from RandomDraw (the system's secure random
// source, no modulo bias). A password holds at least one character of every chosen class: a
// draw that misses one is thrown away whole and drawn again, so every password that meets the
// rule stays equally likely. The symbols leave out quotes, backslashes and spaces, which break a
// password pasted into a shell or a configuration file. Nothing is kept between calls. Any thread.
class PasswordGenerator {
public:
    enum class Style { characters, passphrase };

    struct Settings {
        Style style = Style::characters;
        int length = 24; // characters, kept within minimumLength..maximumLength
        bool upperCase = true;
        bool lowerCase = true;
        bool digits = true;
        bool symbols = true;
        bool avoidLookAlikes = false; // no I, l, 1, O, 0, o
        int wordCount = 6;            // passphrase words, kept within minimumWords..maximumWords
        std::string separator = "-";

        bool operator==(const Settings&) const = default;
    };

    static constexpr int minimumLength = 8;
    static constexpr int maximumLength = 128;
    static constexpr int minimumWords = 4;
    static constexpr int maximumWords = 12;

    static constexpr std::string_view upperCaseLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    static constexpr std::string_view lowerCaseLetters = "abcdefghijklmnopqrstuvwxyz";
    static constexpr std::string_view digitCharacters = "0123456789";
    static constexpr std::string_view symbolCharacters = "!#$%&*+-=?@^_~";
    static constexpr std::string_view lookAlikes = "Il1O0o";

    // The character classes `settings` asks for, in the order above, look-alikes removed.
    static std::vector<std::string> classes(const Settings& settings);

    // A password or passphrase as `settings` say (lengths and counts clamped to their ranges),
    // passphrase words drawn from `words`. Nothing when no class is chosen, `words` is empty for
    // a passphrase, or the random source fails.
    static std::optional<std::string> generate(const Settings& settings,
                                               const std::vector<std::string>& words = {});
};

} // namespace vorlane
