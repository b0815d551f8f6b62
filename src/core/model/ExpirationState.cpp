// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ExpirationState.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, ExpirationState::caseCount> displayNames{
    "No Expiry", "OK", "Expiring Soon", "Upcoming", "Critical", "Expired",
};

constexpr std::array<std::string_view, ExpirationState::caseCount> icons{
    "minus.circle",
    "checkmark.circle",
    "clock",
    "exclamationmark.triangle",
    "exclamationmark.octagon",
    "xmark.octagon",
};

constexpr std::array<Palette::Color, ExpirationState::caseCount> colors{
    Palette::Color::secondary, Palette::Color::green, Palette::Color::yellow,
    Palette::Color::orange,    Palette::Color::red,   Palette::Color::red,
};

} // namespace

std::string_view ExpirationState::displayName() const {
    return displayNames[index()];
}

std::string_view ExpirationState::icon() const {
    return icons[index()];
}

Palette::Color ExpirationState::color() const {
    return colors[index()];
}

} // namespace vorlane
