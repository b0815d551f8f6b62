// SPDX-License-Identifier: GPL-3.0-or-later
// The password generator: the rules every password keeps, and that no character or word is
// likelier than another (chi-square over 100,000 passwords, with alphabets whose size is not a
// power of two, where a modulo mapping would show).

#include "passwords/PasswordGenerator.h"

#include "passwords/PassphraseWords.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace vorlane {
namespace {

using Settings = PasswordGenerator::Settings;
using Style = PasswordGenerator::Style;

// Pearson's statistic of `counts` against equal expectations, and whether it stays under the
// mean plus six standard deviations of the chi-square distribution with its degrees of freedom:
// a fair draw fails this about once in a billion runs; a byte taken modulo the size of an
// alphabet of 10, 24 or 62 characters is out by several hundred.
::testing::AssertionResult looksUniform(const std::map<char, long>& counts, std::size_t cells) {
    if (counts.size() != cells) {
        return ::testing::AssertionFailure()
               << counts.size() << " distinct characters drawn, " << cells << " expected";
    }
    long total = 0;
    for (const auto& [c, n] : counts) {
        total += n;
    }
    const double expected = static_cast<double>(total) / static_cast<double>(cells);
    double chiSquare = 0;
    for (const auto& [c, n] : counts) {
        chiSquare +=
            (static_cast<double>(n) - expected) * (static_cast<double>(n) - expected) / expected;
    }
    const double freedom = static_cast<double>(cells - 1);
    const double limit = freedom + 6 * std::sqrt(2 * freedom);
    if (chiSquare > limit) {
        return ::testing::AssertionFailure() << "chi-square " << chiSquare << " over " << limit;
    }
    return ::testing::AssertionSuccess() << "chi-square " << chiSquare;
}

TEST(PasswordGeneratorTest, EveryPasswordHasItsLengthAndEveryChosenClassAndNothingElse) {
    std::mt19937 pick(28);
    for (int round = 0; round < 3000; ++round) {
        Settings settings;
        settings.length = static_cast<int>(pick() % 140); // also below 8 and above 128
        settings.upperCase = pick() % 2 == 0;
        settings.lowerCase = pick() % 2 == 0;
        settings.digits = pick() % 2 == 0;
        settings.symbols = pick() % 2 == 0;
        settings.avoidLookAlikes = pick() % 2 == 0;
        const std::vector<std::string> classes = PasswordGenerator::classes(settings);
        const std::optional<std::string> password = PasswordGenerator::generate(settings);
        if (classes.empty()) {
            EXPECT_FALSE(password.has_value()) << "no class chosen";
            continue;
        }
        ASSERT_TRUE(password.has_value());
        EXPECT_EQ(password->size(), static_cast<std::size_t>(std::clamp(settings.length, 8, 128)));
        std::string alphabet;
        for (const std::string& characters : classes) {
            EXPECT_NE(password->find_first_of(characters), std::string::npos)
                << *password << " lacks one of " << characters;
            alphabet += characters;
        }
        EXPECT_EQ(password->find_first_not_of(alphabet), std::string::npos) << *password;
        if (settings.avoidLookAlikes) {
            EXPECT_EQ(password->find_first_of("Il1O0o"), std::string::npos) << *password;
        }
    }
}

TEST(PasswordGeneratorTest, CharactersAreEquallyLikelyOver100000Passwords) {
    // All four classes: a password missing a class is drawn again, which favours no character
    // within a class, so each class is checked on its own.
    Settings all;
    std::map<char, long> counts;
    for (int i = 0; i < 100'000; ++i) {
        const std::string password = PasswordGenerator::generate(all).value();
        for (const char c : password) {
            ++counts[c];
        }
    }
    for (const std::string& characters : PasswordGenerator::classes(all)) {
        std::map<char, long> ofClass;
        for (const char c : characters) {
            if (counts.count(c) != 0) {
                ofClass[c] = counts[c];
            }
        }
        EXPECT_TRUE(looksUniform(ofClass, characters.size())) << characters;
    }

    // Single classes of 10, 24 and 14 characters, drawn without the class rule getting in the
    // way.
    const Settings digits{Style::characters, 8, false, false, true, false};
    const Settings letters{Style::characters, 8, false, true, false, false, true};
    const Settings symbols{Style::characters, 8, false, false, false, true};
    for (const Settings& settings : {digits, letters, symbols}) {
        const std::string alphabet = PasswordGenerator::classes(settings).front();
        std::map<char, long> drawn;
        for (int i = 0; i < 100'000; ++i) {
            const std::string password = PasswordGenerator::generate(settings).value();
            for (const char c : password) {
                ++drawn[c];
            }
        }
        EXPECT_TRUE(looksUniform(drawn, alphabet.size())) << alphabet;
    }
}

class PassphraseTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_dir = std::filesystem::temp_directory_path() /
                ("vorlane-words-" + std::to_string(::getpid()));
        std::filesystem::create_directories(m_dir);
    }
    void TearDown() override { std::filesystem::remove_all(m_dir); }

    std::filesystem::path m_dir;
};

TEST_F(PassphraseTest, OnlyPlainLowerCaseWordsOfThreeToNineLettersAreUsedOnce) {
    const std::string path = m_dir / "words";
    std::ofstream(path) << "a\nan\nant\nAntarctica\nant's\nbrooklyn\ncafé\nlongwords\nlongerword\n"
                           "ant\nzebra\n";
    EXPECT_EQ(PassphraseWords::load(path),
              (std::vector<std::string>{"ant", "brooklyn", "longwords", "zebra"}));
    EXPECT_TRUE(PassphraseWords::load(m_dir / "missing").empty());

    const std::vector<std::string>& system = PassphraseWords::system();
    EXPECT_GT(system.size(), 20'000U) << "wamerican's list";
    for (const std::string& word : system) {
        ASSERT_GE(word.size(), 3U);
        ASSERT_LE(word.size(), 9U);
        ASSERT_EQ(word.find_first_not_of("abcdefghijklmnopqrstuvwxyz"), std::string::npos);
    }
}

TEST_F(PassphraseTest, APassphraseHasItsWordsAndSeparatorAndFavoursNoWord) {
    const std::vector<std::string> words = PassphraseWords::system();
    const std::set<std::string> known(words.begin(), words.end());
    Settings settings;
    settings.style = Style::passphrase;
    settings.separator = " + ";
    for (const int count : {1, 4, 7, 12, 40}) {
        settings.wordCount = count;
        const std::string phrase = *PasswordGenerator::generate(settings, words);
        std::vector<std::string> parts;
        std::size_t start = 0;
        for (std::size_t at; (at = phrase.find(" + ", start)) != std::string::npos;
             start = at + 3) {
            parts.push_back(phrase.substr(start, at - start));
        }
        parts.push_back(phrase.substr(start));
        EXPECT_EQ(parts.size(), static_cast<std::size_t>(std::clamp(count, 4, 12))) << phrase;
        for (const std::string& part : parts) {
            EXPECT_EQ(known.count(part), 1U) << part;
        }
    }
    EXPECT_FALSE(PasswordGenerator::generate(settings, {}).has_value());

    // Ten words (not a power of two) through 100,000 phrases of four: each equally often.
    const std::vector<std::string> ten = {"ant", "bee", "cat", "dog",  "eel",
                                          "fox", "gnu", "hen", "ibis", "jay"};
    settings.wordCount = 4;
    settings.separator = "-";
    std::map<char, long> firstLetters;
    for (int i = 0; i < 100'000; ++i) {
        const std::string phrase = *PasswordGenerator::generate(settings, ten);
        for (std::size_t at = 0; at != std::string::npos; at = phrase.find('-', at + 1)) {
            ++firstLetters[phrase[at == 0 ? 0 : at + 1]];
        }
    }
    EXPECT_TRUE(looksUniform(firstLetters, ten.size()));
}

} // namespace
} // namespace vorlane
