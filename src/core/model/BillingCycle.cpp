// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/BillingCycle.h"

namespace vorlane {

namespace {

constexpr std::array<std::string_view, BillingCycle::caseCount> labels{
    "Monthly",        "Quarterly",       "Semi-Annual", "Annual",
    "Biennial (2yr)", "Triennial (3yr)", "One-Time",    "None",
};

constexpr std::array<std::optional<int>, BillingCycle::caseCount> spreadMonths{
    12, 12, 12, 12, 24, 36, std::nullopt, std::nullopt,
};

constexpr std::array<int, BillingCycle::caseCount> renewalStepMonths{1, 3, 6, 12, 24, 36, 12, 12};

} // namespace

std::string_view BillingCycle::label() const {
    return labels[index()];
}

std::optional<int> BillingCycle::yearlyCostSpreadMonths() const {
    return spreadMonths[index()];
}

int BillingCycle::renewalMonths() const {
    return renewalStepMonths[index()];
}

} // namespace vorlane
