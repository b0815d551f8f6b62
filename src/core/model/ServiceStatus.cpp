// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ServiceStatus.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, ServiceStatus::caseCount> displayNames{
    "Active",
    "Warning",
    "Expired",
    "Archived",
};

constexpr std::array<Palette::Color, ServiceStatus::caseCount> colors{
    Palette::Color::green,
    Palette::Color::orange,
    Palette::Color::red,
    Palette::Color::secondary,
};

} // namespace

std::string_view ServiceStatus::displayName() const {
    return displayNames[index()];
}

Palette::Color ServiceStatus::color() const {
    return colors[index()];
}

} // namespace vorlane
