// SPDX-License-Identifier: GPL-3.0-or-later
#include "passwords/PasswordStrength.h"

#include <gtest/gtest.h>

namespace vorlane {
namespace {

double guesses(std::string_view password) {
    return PasswordStrength::estimate(password).log10Guesses;
}

TEST(PasswordStrengthTest, PatternsPeopleUseAreWeakWhateverTheirLength) {
    for (const char* password :
         {"", "password", "P@ssw0rd", "Summer2024!", "iloveyou1987", "aaaaaaaaaaaaaaaaaaaa",
          "abcdefghijklmnopqrst", "98765432109876543210", "qwertyqwertyqwerty", "passwordpassword",
          "Dragon!Dragon!Dragon!", "zzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzz"}) {
        const PasswordStrength::Estimate estimate = PasswordStrength::estimate(password);
        EXPECT_LT(estimate.log10Guesses, PasswordStrength::weakBelowLog10) << password;
        EXPECT_EQ(estimate.level, PasswordStrength::Level::weak) << password;
        EXPECT_FALSE(PasswordStrength::suitsEncryption(password)) << password;
    }
}

TEST(PasswordStrengthTest, RandomCharactersCountByLengthAndClasses) {
    // Ten random lower-case letters: 26^10, about 10^14.
    EXPECT_NEAR(guesses("kqzvwpxjrm"), 14.15, 0.05);
    // Every class adds to what each position can be.
    EXPECT_GT(guesses("kqzVwPxJrm"), guesses("kqzvwpxjrm") + 2);
    EXPECT_GT(guesses("kq7VwP#Jrm"), guesses("kqzVwPxJrm") + 1);
    EXPECT_EQ(PasswordStrength::estimate("tq8#Vz!mR2pLw9$e").level,
              PasswordStrength::Level::veryStrong);
    // Words outside the common ones are letters like any others.
    EXPECT_GE(guesses("correct horse battery staple"), 18);
}

TEST(PasswordStrengthTest, CommonWordsRepeatsAndSequencesCostFarLessThanRandomLetters) {
    EXPECT_LT(guesses("Monkey73"), guesses("Qzmvbx73") - 4);
    EXPECT_LT(guesses("M0nk3y73"), guesses("Qzmvbx73") - 4);
    EXPECT_LT(guesses("ghghghghghgh"), guesses("ghqpwmzkxrtv") - 10);
    EXPECT_LT(guesses("lmnopqrstuvw"), guesses("lqnxpwrbtzvm") - 10);
    // The rest of a password still counts in full around a common word.
    EXPECT_GT(guesses("monkey-tq8#Vz!mR2pLw"), guesses("monkey") + 20);
}

TEST(PasswordStrengthTest, EncryptionNeedsTwelveCharactersAndAnEstimateThatIsNotWeak) {
    EXPECT_FALSE(PasswordStrength::suitsEncryption("tq8#Vz!mR2p"));
    EXPECT_TRUE(PasswordStrength::suitsEncryption("tq8#Vz!mR2pL"));
    // Characters, not bytes: eleven distinct accented letters take 22 bytes.
    EXPECT_FALSE(PasswordStrength::suitsEncryption("ñøßþéüçåæðµ"));
    EXPECT_TRUE(PasswordStrength::suitsEncryption("ñøßþéüçåæðµ¥"));
    // Long enough but made of a pattern.
    EXPECT_FALSE(PasswordStrength::suitsEncryption("abcabcabcabcabc"));
}

TEST(PasswordStrengthTest, VeryLongAndMalformedTextIsEstimated) {
    const std::string repeated(100000, 'x');
    EXPECT_LT(guesses(repeated.substr(0, 200)), PasswordStrength::weakBelowLog10);
    EXPECT_GT(guesses(repeated), 100);
    EXPECT_GT(guesses("\xff\xfe\x80tq8#Vz!mR2pLw"), guesses("tq8#Vz!mR2pLw"));
}

TEST(PasswordStrengthTest, SummaryNamesTheLevelAndThePowerOfTen) {
    EXPECT_EQ(PasswordStrength::summary(PasswordStrength::estimate("kqzvwpxjr")),
              "Fair: about 10^12 guesses");
    EXPECT_EQ(PasswordStrength::summary(PasswordStrength::estimate("")),
              "Weak: about 10^0 guesses");
}

} // namespace
} // namespace vorlane
