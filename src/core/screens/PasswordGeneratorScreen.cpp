// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/PasswordGeneratorScreen.h"

#include "app/PreferenceStore.h"

#include <algorithm>

namespace vorlane {

namespace {

namespace Key {
constexpr std::string_view style = "generator/passphrase";
constexpr std::string_view length = "generator/length";
constexpr std::string_view upperCase = "generator/upperCase";
constexpr std::string_view lowerCase = "generator/lowerCase";
constexpr std::string_view digits = "generator/digits";
constexpr std::string_view symbols = "generator/symbols";
constexpr std::string_view avoidLookAlikes = "generator/avoidLookAlikes";
constexpr std::string_view wordCount = "generator/wordCount";
constexpr std::string_view separator = "generator/separator";
} // namespace Key

void wipe(std::string& text) {
    std::fill(text.begin(), text.end(), '\0');
    text.clear();
}

} // namespace

const std::vector<std::string>& PasswordGeneratorScreen::separators() {
    static const std::vector<std::string> list = {"-", " ", ".", "_", ","};
    return list;
}

PasswordGeneratorScreen::PasswordGeneratorScreen(PreferenceStore& preferences,
                                                 const std::vector<std::string>& words)
    : m_preferences(preferences)
    , m_words(words) {
    const Settings defaults;
    Settings& s = m_settings;
    s.style = preferences.boolValue(Key::style, false) ? Style::passphrase : Style::characters;
    s.length = std::clamp(preferences.intValue(Key::length, defaults.length),
                          PasswordGenerator::minimumLength, PasswordGenerator::maximumLength);
    s.upperCase = preferences.boolValue(Key::upperCase, defaults.upperCase);
    s.lowerCase = preferences.boolValue(Key::lowerCase, defaults.lowerCase);
    s.digits = preferences.boolValue(Key::digits, defaults.digits);
    s.symbols = preferences.boolValue(Key::symbols, defaults.symbols);
    if (!s.upperCase && !s.lowerCase && !s.digits && !s.symbols) {
        s.lowerCase = true; // a damaged preference file must not leave nothing to draw from
    }
    s.avoidLookAlikes = preferences.boolValue(Key::avoidLookAlikes, defaults.avoidLookAlikes);
    s.wordCount = std::clamp(preferences.intValue(Key::wordCount, defaults.wordCount),
                             PasswordGenerator::minimumWords, PasswordGenerator::maximumWords);
    const int separator = preferences.intValue(Key::separator, 0);
    s.separator = separators()[separator >= 0 && separator < static_cast<int>(separators().size())
                                   ? static_cast<std::size_t>(separator)
                                   : 0];
    regenerate();
}

PasswordGeneratorScreen::~PasswordGeneratorScreen() {
    wipe(m_candidate);
}

void PasswordGeneratorScreen::setStyle(Style style) {
    m_settings.style = style;
    changed();
}

void PasswordGeneratorScreen::setLength(int length) {
    m_settings.length =
        std::clamp(length, PasswordGenerator::minimumLength, PasswordGenerator::maximumLength);
    changed();
}

bool PasswordGeneratorScreen::isChosen(CharacterClass characterClass) const {
    switch (characterClass) {
    case CharacterClass::upperCase:
        return m_settings.upperCase;
    case CharacterClass::lowerCase:
        return m_settings.lowerCase;
    case CharacterClass::digits:
        return m_settings.digits;
    case CharacterClass::symbols:
        return m_settings.symbols;
    }
    return false;
}

bool PasswordGeneratorScreen::canToggle(CharacterClass characterClass) const {
    const int chosen = int(m_settings.upperCase) + int(m_settings.lowerCase) +
                       int(m_settings.digits) + int(m_settings.symbols);
    return !isChosen(characterClass) || chosen > 1;
}

void PasswordGeneratorScreen::setClass(CharacterClass characterClass, bool chosen) {
    if (chosen == isChosen(characterClass) || !canToggle(characterClass)) {
        return;
    }
    switch (characterClass) {
    case CharacterClass::upperCase:
        m_settings.upperCase = chosen;
        break;
    case CharacterClass::lowerCase:
        m_settings.lowerCase = chosen;
        break;
    case CharacterClass::digits:
        m_settings.digits = chosen;
        break;
    case CharacterClass::symbols:
        m_settings.symbols = chosen;
        break;
    }
    changed();
}

void PasswordGeneratorScreen::setAvoidLookAlikes(bool avoid) {
    m_settings.avoidLookAlikes = avoid;
    changed();
}

void PasswordGeneratorScreen::setWordCount(int count) {
    m_settings.wordCount =
        std::clamp(count, PasswordGenerator::minimumWords, PasswordGenerator::maximumWords);
    changed();
}

void PasswordGeneratorScreen::setSeparatorIndex(int index) {
    if (index >= 0 && index < static_cast<int>(separators().size())) {
        m_settings.separator = separators()[static_cast<std::size_t>(index)];
        changed();
    }
}

int PasswordGeneratorScreen::separatorIndex() const {
    const auto& list = separators();
    return static_cast<int>(std::find(list.begin(), list.end(), m_settings.separator) -
                            list.begin());
}

PasswordStrength::Estimate PasswordGeneratorScreen::strength() const {
    return PasswordStrength::estimate(m_candidate);
}

std::string PasswordGeneratorScreen::strengthText() const {
    return canUse() ? PasswordStrength::summary(strength()) : std::string();
}

void PasswordGeneratorScreen::regenerate() {
    wipe(m_candidate);
    std::optional<std::string> made = PasswordGenerator::generate(m_settings, m_words);
    if (made) {
        m_candidate = std::move(*made);
    }
}

std::string PasswordGeneratorScreen::take() {
    std::string taken = std::move(m_candidate);
    m_candidate.clear();
    return taken;
}

void PasswordGeneratorScreen::changed() {
    const Settings& s = m_settings;
    m_preferences.setBoolValue(Key::style, s.style == Style::passphrase);
    m_preferences.setIntValue(Key::length, s.length);
    m_preferences.setBoolValue(Key::upperCase, s.upperCase);
    m_preferences.setBoolValue(Key::lowerCase, s.lowerCase);
    m_preferences.setBoolValue(Key::digits, s.digits);
    m_preferences.setBoolValue(Key::symbols, s.symbols);
    m_preferences.setBoolValue(Key::avoidLookAlikes, s.avoidLookAlikes);
    m_preferences.setIntValue(Key::wordCount, s.wordCount);
    m_preferences.setIntValue(Key::separator, separatorIndex());
    regenerate();
}

} // namespace vorlane
