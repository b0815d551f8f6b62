// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ChartBar.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace vorlane {

double ChartBar::fractionOf(const Decimal& amount, const Decimal& largest) {
    if (largest <= Decimal() || amount <= Decimal()) {
        return 0.0;
    }
    // The one place money becomes a double: a bar's length in pixels needs no more than a few
    // digits of the exact quotient.
    // from_chars, not strtod: the decimal point must not depend on the process's C locale.
    const std::string quotient = amount.dividedBy(largest).value_or(Decimal()).toString();
    double fraction = 0.0;
    std::from_chars(quotient.data(), quotient.data() + quotient.size(), fraction);
    return std::clamp(fraction, 0.0, 1.0);
}

} // namespace vorlane
