// SPDX-License-Identifier: GPL-3.0-or-later
// The generator sheet's model over the real preference file: what it offers, what it remembers,
// and that the candidate follows the settings.

#include "screens/PasswordGeneratorScreen.h"

#include "ScreenFixture.h"
#include "passwords/PassphraseWords.h"

#include <set>

namespace vorlane::testing {
namespace {

using CharacterClass = PasswordGeneratorScreen::CharacterClass;
using Style = PasswordGeneratorScreen::Style;

class PasswordGeneratorScreenTest : public ScreenFixture {};

TEST_F(PasswordGeneratorScreenTest, StartsWith24CharactersOfEveryClassAndRatesTheCandidate) {
    PasswordGeneratorScreen screen(m_preferences, PassphraseWords::system());
    EXPECT_EQ(screen.settings(), PasswordGenerator::Settings());
    ASSERT_TRUE(screen.canUse());
    EXPECT_EQ(screen.candidate().size(), 24U);
    EXPECT_EQ(screen.strength().level, PasswordStrength::Level::veryStrong);
    EXPECT_EQ(screen.strengthText(), PasswordStrength::summary(screen.strength()));
    const std::string first = screen.candidate();
    screen.regenerate();
    EXPECT_NE(screen.candidate(), first);

    // A short password of digits alone is offered, and said to be weak.
    screen.setLength(2);
    EXPECT_EQ(screen.settings().length, 8) << "kept within 8 to 128";
    for (const CharacterClass off :
         {CharacterClass::upperCase, CharacterClass::lowerCase, CharacterClass::symbols}) {
        screen.setClass(off, false);
    }
    EXPECT_EQ(screen.candidate().find_first_not_of("0123456789"), std::string::npos)
        << screen.candidate();
    EXPECT_EQ(screen.strength().level, PasswordStrength::Level::weak);
    EXPECT_EQ(screen.strengthText().rfind("Weak", 0), 0U) << screen.strengthText();
}

TEST_F(PasswordGeneratorScreenTest, TheLastChosenClassStaysOnAndSettingsAreRemembered) {
    {
        PasswordGeneratorScreen screen(m_preferences, PassphraseWords::system());
        screen.setClass(CharacterClass::upperCase, false);
        screen.setClass(CharacterClass::digits, false);
        screen.setClass(CharacterClass::symbols, false);
        EXPECT_FALSE(screen.canToggle(CharacterClass::lowerCase));
        EXPECT_TRUE(screen.canToggle(CharacterClass::digits));
        screen.setClass(CharacterClass::lowerCase, false);
        EXPECT_TRUE(screen.isChosen(CharacterClass::lowerCase)) << "never nothing to draw from";
        screen.setAvoidLookAlikes(true);
        screen.setLength(40);
        screen.setStyle(Style::passphrase);
        screen.setWordCount(99);
        screen.setSeparatorIndex(3);
        EXPECT_EQ(screen.settings().wordCount, 12);
    }
    PasswordGeneratorScreen again(m_preferences, PassphraseWords::system());
    PasswordGenerator::Settings expected;
    expected.style = Style::passphrase;
    expected.length = 40;
    expected.upperCase = false;
    expected.digits = false;
    expected.symbols = false;
    expected.avoidLookAlikes = true;
    expected.wordCount = 12;
    expected.separator = "_";
    EXPECT_EQ(again.settings(), expected);
    EXPECT_EQ(again.separatorIndex(), 3);

    // Twelve words of the list joined by "_"; taking it leaves nothing behind.
    const std::set<std::string> known(PassphraseWords::system().begin(),
                                      PassphraseWords::system().end());
    std::string phrase = again.take();
    EXPECT_EQ(again.candidate(), "");
    EXPECT_FALSE(again.canUse());
    std::size_t words = 0;
    for (std::size_t start = 0; start <= phrase.size(); ++words) {
        const std::size_t end = std::min(phrase.find('_', start), phrase.size());
        EXPECT_EQ(known.count(phrase.substr(start, end - start)), 1U) << phrase;
        start = end + 1;
    }
    EXPECT_EQ(words, 12U) << phrase;
}

TEST_F(PasswordGeneratorScreenTest, WithoutAWordListAPassphraseCannotBeUsed) {
    const std::vector<std::string> none;
    PasswordGeneratorScreen screen(m_preferences, none);
    EXPECT_TRUE(screen.canUse());
    screen.setStyle(Style::passphrase);
    EXPECT_FALSE(screen.canUse());
    EXPECT_EQ(screen.strengthText(), "");
}

} // namespace
} // namespace vorlane::testing
