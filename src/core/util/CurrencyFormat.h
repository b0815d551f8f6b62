// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"

#include <string>
#include <string_view>

namespace vorlane {

// The one way money is written anywhere in the program: currency style in US dollars (the vault
// has no currency field), between 0 and 2 fraction digits, in the user's locale ("$1,234.5" in
// en_US, "1.234,5 $" in de_DE). Formats the exact decimal text, never a double. "$0" when ICU
// cannot format the amount. An empty locale id means the process's default locale. Any thread.
std::string currencyFormatted(const Decimal& amount, std::string_view localeId = {});

} // namespace vorlane
