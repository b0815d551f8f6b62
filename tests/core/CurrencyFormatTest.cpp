// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CurrencyFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

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

// Sets the vault's currency for one test and puts the default back.
class VaultCurrency {
public:
    explicit VaultCurrency(std::string_view code) { EXPECT_TRUE(setVaultCurrency(code)); }
    ~VaultCurrency() { setVaultCurrency(defaultCurrency); }
};

TEST(CurrencyFormatTest, EuroAndYenInGermanAndJapaneseWithTheCurrencysOwnDigits) {
    {
        const VaultCurrency euro("EUR");
        EXPECT_EQ(currencyFormatted(amount("1234.5"), "de_DE"), "1.234,5" + nbsp + "€");
        EXPECT_EQ(currencyFormatted(amount("15"), "de_DE", CurrencyDigits::all),
                  "15,00" + nbsp + "€");
        EXPECT_EQ(currencyFormatted(amount("0.015"), "de_DE", CurrencyDigits::all),
                  "0,02" + nbsp + "€");
        EXPECT_EQ(currencyFormatted(amount("1234.5"), "ja_JP"), "€1,234.5");
        EXPECT_EQ(currencyFormatted(amount("15"), "ja_JP", CurrencyDigits::all), "€15.00");
        EXPECT_EQ(currencyFormatted(amount("15"), "en_US", CurrencyDigits::all), "€15.00");
    }
    {
        // The yen has no minor unit: never a fraction digit, whichever way it is asked for.
        const VaultCurrency yen("JPY");
        EXPECT_EQ(currencyFormatted(amount("1234.5"), "ja_JP"), "￥1,234");
        EXPECT_EQ(currencyFormatted(amount("1235.5"), "ja_JP", CurrencyDigits::all), "￥1,236");
        EXPECT_EQ(currencyFormatted(amount("15"), "ja_JP", CurrencyDigits::all), "￥15");
        EXPECT_EQ(currencyFormatted(amount("1234.5"), "de_DE"), "1.234" + nbsp + "¥");
        EXPECT_EQ(currencyFormatted(amount("15"), "de_DE", CurrencyDigits::all), "15" + nbsp + "¥");
    }
    // Back to the default: exactly what was written before there was a choice.
    EXPECT_EQ(vaultCurrency(), "USD");
    EXPECT_EQ(currencyFormatted(amount("15"), "en_US"), "$15");
    EXPECT_EQ(currencyFormatted(amount("15"), "en_US", CurrencyDigits::all), "$15.00");
}

TEST(CurrencyFormatTest, OnlyCurrentIsoCodesAreAccepted) {
    for (const char* code : {"usd", "XYZ", "", "EURO", "DEM"}) {
        EXPECT_FALSE(setVaultCurrency(code)) << code;
        EXPECT_EQ(vaultCurrency(), "USD") << code;
    }
    const std::vector<CurrencyChoice> choices = currencyChoices("en_US");
    ASSERT_GT(choices.size(), 100u);
    EXPECT_TRUE(std::is_sorted(choices.begin(), choices.end(),
                               [](const auto& a, const auto& b) { return a.code < b.code; }));
    const auto euro = std::find_if(choices.begin(), choices.end(),
                                   [](const CurrencyChoice& c) { return c.code == "EUR"; });
    ASSERT_NE(euro, choices.end());
    EXPECT_EQ(euro->name, "Euro");
    EXPECT_EQ(currencyChoices("de_DE").front().code, choices.front().code);
}

} // namespace
} // namespace vorlane
