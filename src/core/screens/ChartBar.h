// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "util/Decimal.h"

#include <string>

namespace vorlane {

// One bar of a screen's chart: its label under or beside the bar, the amount written above it,
// its length as a share of the longest bar (0 to 1, for drawing only; the amount itself stays an
// exact decimal in the screen model) and the sentence a screen reader says for it.
struct ChartBar {
    std::string label;
    std::string valueText;
    double fraction = 0.0;
    Palette::Color color = Palette::Color::blue;
    std::string accessibleText;

    // `amount` as a share of `largest` for drawing: 0 when `largest` is not above zero, never
    // more than 1.
    static double fractionOf(const Decimal& amount, const Decimal& largest);
};

} // namespace vorlane
