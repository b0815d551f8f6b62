// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "passwords/PasswordGenerator.h"
#include "passwords/PasswordStrength.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class PreferenceStore;

// The generator that every "Generate" button opens: the settings (characters of chosen classes,
// or a passphrase), a candidate made with them and its estimated strength, and "Use" to take it.
// Every change of a setting makes a new candidate at once. The settings are remembered in the
// preferences as they change; a candidate is never stored anywhere: it lives in this object
// (wiped when it goes) until the person takes it into a field. Main thread.
class PasswordGeneratorScreen {
public:
    using Settings = PasswordGenerator::Settings;
    using Style = PasswordGenerator::Style;
    enum class CharacterClass { upperCase, lowerCase, digits, symbols };

    // The separators a passphrase may use, as offered ("-", " ", ".", "_", ",").
    static const std::vector<std::string>& separators();

    // Reads the last settings (defaults the first time) and makes a first candidate.
    explicit PasswordGeneratorScreen(PreferenceStore& preferences,
                                     const std::vector<std::string>& words);
    ~PasswordGeneratorScreen();
    PasswordGeneratorScreen(const PasswordGeneratorScreen&) = delete;
    PasswordGeneratorScreen& operator=(const PasswordGeneratorScreen&) = delete;

    const Settings& settings() const { return m_settings; }
    void setStyle(Style style);
    void setLength(int length); // kept within 8..128
    void setClass(CharacterClass characterClass, bool chosen);
    bool isChosen(CharacterClass characterClass) const;
    // The last chosen class cannot be turned off: a password needs characters of some kind.
    bool canToggle(CharacterClass characterClass) const;
    void setAvoidLookAlikes(bool avoid);
    void setWordCount(int count); // kept within 4..12
    void setSeparatorIndex(int index);
    int separatorIndex() const;

    // The password or passphrase on offer; empty when none could be made (the random source
    // failed, or no word list for a passphrase), and then `canUse` is false.
    const std::string& candidate() const { return m_candidate; }
    bool canUse() const { return !m_candidate.empty(); }
    // Its estimated strength: "Very Strong: about 10^38 guesses".
    PasswordStrength::Estimate strength() const;
    std::string strengthText() const;
    // Draws a new candidate with the same settings.
    void regenerate();
    // "Use": hands over the candidate (the object keeps no copy).
    std::string take();

private:
    void changed(); // saves the settings and draws a new candidate

    PreferenceStore& m_preferences;
    const std::vector<std::string>& m_words;
    Settings m_settings;
    std::string m_candidate;
};

} // namespace vorlane
