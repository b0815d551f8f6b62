// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/RiskLevel.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, RiskLevel::caseCount> displayNames{
    "Low",
    "Medium",
    "High",
    "Critical",
};

} // namespace

std::string_view RiskLevel::displayName() const {
    return displayNames[index()];
}

} // namespace vorlane
