// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"

#include <string>
#include <string_view>

namespace vorlane {

// One summary figure as the dashboard and the expense screen show it: a title, the value already
// written ("12", "$1,234.5"), a symbol and its colour.
struct StatCard {
    std::string title;
    std::string value;
    std::string_view icon;
    Palette::Color color = Palette::Color::secondary;

    // "Monthly Spend: $1,234.5", what a screen reader says for the card.
    std::string accessibleText() const { return title + ": " + value; }

    friend bool operator==(const StatCard&, const StatCard&) = default;
};

} // namespace vorlane
