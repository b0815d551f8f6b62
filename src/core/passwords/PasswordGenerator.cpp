// SPDX-License-Identifier: GPL-3.0-or-later
#include "passwords/PasswordGenerator.h"

#include "crypto/RandomDraw.h"

#include <algorithm>

namespace vorlane {

namespace {

void wipe(std::string& text) {
    std::fill(text.begin(), text.end(), '\0');
    text.clear();
}

std::optional<std::string> passphrase(const PasswordGenerator::Settings& settings,
                                      const std::vector<std::string>& words) {
    if (words.empty()) {
        return std::nullopt;
    }
    const int count = std::clamp(settings.wordCount, PasswordGenerator::minimumWords,
                                 PasswordGenerator::maximumWords);
    RandomDraw draw;
    std::string result;
    result.reserve(static_cast<std::size_t>(count) * (10 + settings.separator.size()));
    for (int i = 0; i < count; ++i) {
        const std::optional<std::uint32_t> index =
            draw.below(static_cast<std::uint32_t>(words.size()));
        if (!index) {
            wipe(result);
            return std::nullopt;
        }
        if (i > 0) {
            result += settings.separator;
        }
        result += words[*index];
    }
    return result;
}

} // namespace

std::vector<std::string> PasswordGenerator::classes(const Settings& settings) {
    std::vector<std::string> result;
    const auto add = [&](bool chosen, std::string_view characters) {
        if (!chosen) {
            return;
        }
        std::string kept;
        for (const char c : characters) {
            if (!settings.avoidLookAlikes || lookAlikes.find(c) == std::string_view::npos) {
                kept.push_back(c);
            }
        }
        result.push_back(std::move(kept));
    };
    add(settings.upperCase, upperCaseLetters);
    add(settings.lowerCase, lowerCaseLetters);
    add(settings.digits, digitCharacters);
    add(settings.symbols, symbolCharacters);
    return result;
}

std::optional<std::string> PasswordGenerator::generate(const Settings& settings,
                                                       const std::vector<std::string>& words) {
    if (settings.style == Style::passphrase) {
        return passphrase(settings, words);
    }
    const std::vector<std::string> chosen = classes(settings);
    if (chosen.empty()) {
        return std::nullopt;
    }
    std::string alphabet;
    for (const std::string& characters : chosen) {
        alphabet += characters;
    }
    const auto length =
        static_cast<std::size_t>(std::clamp(settings.length, minimumLength, maximumLength));
    RandomDraw draw;
    std::string password;
    password.reserve(length);
    for (;;) {
        wipe(password);
        while (password.size() < length) {
            const std::optional<std::uint32_t> index =
                draw.below(static_cast<std::uint32_t>(alphabet.size()));
            if (!index) {
                wipe(password);
                return std::nullopt;
            }
            password.push_back(alphabet[*index]);
        }
        const bool everyClass =
            std::all_of(chosen.begin(), chosen.end(), [&](const std::string& characters) {
                return password.find_first_of(characters) != std::string::npos;
            });
        if (everyClass) {
            return password;
        }
    }
}

} // namespace vorlane
