// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ShareMethod.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, ShareMethod::caseCount> displayNames{
    "Encrypted Export",
    "Redacted Summary",
    "Full Encrypted Bundle",
};

} // namespace

std::string_view ShareMethod::displayName() const {
    return displayNames[index()];
}

} // namespace vorlane
