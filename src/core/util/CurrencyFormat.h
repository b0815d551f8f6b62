// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// How many fraction digits an amount is written with. `upTo` is how costs have always been shown:
// none to the currency's own digits ("$1,234.5", "$15"). `all` writes every digit of the
// currency, as a bill does ("$15.00"): for what is due and what was paid.
enum class CurrencyDigits { upTo, all };

// The one way money is written anywhere in the program: currency style in the vault's currency
// (see `setVaultCurrency`), with at most the currency's own fraction digits (two for USD and EUR,
// none for JPY), in the user's locale ("$1,234.5" in en_US, "1.234,5 €" in de_DE with EUR,
// "￥1,235" in ja_JP with JPY). Formats the exact decimal text, never a double; amounts are never
// converted between currencies. "0" when ICU cannot format the amount.
// An empty locale id means the process's default locale. Any thread.
std::string currencyFormatted(const Decimal& amount, std::string_view localeId = {},
                              CurrencyDigits digits = CurrencyDigits::upTo);

// The vault's one currency, an ISO 4217 code: "USD" until set. Setting a code that is not a
// current ISO 4217 currency is refused (false) and changes nothing. Any thread.
bool setVaultCurrency(std::string_view code);
std::string vaultCurrency();
inline constexpr std::string_view defaultCurrency = "USD";

// Every current ISO 4217 code ICU knows, in alphabetical order, with its name in the given
// locale: for a picker of currencies.
struct CurrencyChoice {
    std::string code;
    std::string name;
};
std::vector<CurrencyChoice> currencyChoices(std::string_view localeId = {});

} // namespace vorlane
