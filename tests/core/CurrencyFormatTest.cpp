// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CurrencyFormat.h"

#include <gtest/gtest.h>

#include <string>

namespace vorlane {
namespace {

Decimal amount(const char* text) {
    return Decimal::fromString(text).value();
}

// ICU separates the German amount from its sign with a no-break space.
const std::string nbsp = "\u00A0";

TEST(CurrencyFormatTest, WritesBetweenNoneAndTwoFractionDigitsInEachLocale) {
    EXPECT_EQ(currencyFormatted(amount("1234.5"), "en_US"), "$1,234.5");
    EXPECT_EQ(currencyFormatted(amount("0"), "en_US"), "$0");
    EXPECT_EQ(currencyFormatted(amount("0.005"), "en_US"), "$0"); // half-even: down to 0.00
    EXPECT_EQ(currencyFormatted(amount("1000000000"), "en_US"), "$1,000,000,000");
    EXPECT_EQ(currencyFormatted(amount("12.999"), "en_US"), "$13");

    EXPECT_EQ(currencyFormatted(amount("1234.5"), "de_DE"), "1.234,5" + nbsp + "$");
    EXPECT_EQ(currencyFormatted(amount("0"), "de_DE"), "0" + nbsp + "$");
    EXPECT_EQ(currencyFormatted(amount("0.005"), "de_DE"), "0" + nbsp + "$");
    EXPECT_EQ(currencyFormatted(amount("1000000000"), "de_DE"), "1.000.000.000" + nbsp + "$");

    // What ICU makes of LANG=C: no preference, so plain English, not "$ 1234.5".
    EXPECT_EQ(currencyFormatted(amount("1234.5"), "en_US_POSIX"), "$1,234.5");
}

TEST(CurrencyFormatTest, RoundsTheExactDecimalNotABinaryApproximation) {
    // As a double 0.015 is 0.01499..., which would round down to $0.01; the exact value is a tie
    // that rounds to the even cent.
    EXPECT_EQ(currencyFormatted(amount("0.015"), "en_US"), "$0.02");
    EXPECT_EQ(currencyFormatted(amount("0.025"), "en_US"), "$0.02");
    // 38 significant digits survive whole; a double keeps about 16.
    EXPECT_EQ(currencyFormatted(amount("12345678901234567890123456789.25"), "en_US"),
              "$12,345,678,901,234,567,890,123,456,789.25");
}

TEST(CurrencyFormatTest, EmptyLocaleIsTheProcessLocaleAndEachLocaleKeepsItsOwnFormat) {
    // The test runs with LANG=en_US.UTF-8. Alternating locales checks that a formatter kept for
    // one locale is never handed out for another.
    EXPECT_EQ(currencyFormatted(amount("1234.5")), "$1,234.5");
    EXPECT_EQ(currencyFormatted(amount("1234.5"), "de_DE"), "1.234,5" + nbsp + "$");
    EXPECT_EQ(currencyFormatted(amount("1234.5")), "$1,234.5");
}

} // namespace
} // namespace vorlane
