// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/ServiceRecord.h"

#include "util/UserCalendar.h"

#include <array>
#include <chrono>

namespace vorlane {

namespace {

// The expiration thresholds are fixed: the user's warning-days preference does not move them.
constexpr int criticalBelowDays = 2;
constexpr int upcomingUpToDays = 7;
constexpr int soonUpToDays = 30;

// A calendar day lasts at most 25 hours (the day a daylight-saving change takes an hour back),
// so a date at least this far ahead is more than `soonUpToDays` whole days away whatever the
// calendar says: such a date is `normal` without asking the calendar, which is what makes the
// state of thousands of services cheap to work out.
constexpr auto surelyNormalAfter = std::chrono::hours(25) * (soonUpToDays + 1);

} // namespace

ServiceRecord ServiceRecord::created(Instant now) {
    ServiceRecord record;
    record.id = Uuid::generate();
    record.createdAt = now;
    record.updatedAt = now;
    record.setServiceType(ServiceType::customSecret);
    record.setBillingCycle(BillingCycle::none);
    record.setRiskLevel(RiskLevel::low);
    record.setStatus(ServiceStatus::active);
    return record;
}

std::string ServiceRecord::makeSecretKeychainID() {
    return "vorlane.secret." + Uuid::generate().toString();
}

std::string ServiceRecord::makeAPIKeyKeychainID() {
    return "vorlane.apikey." + Uuid::generate().toString();
}

std::string ServiceRecord::makeTOTPKeychainID() {
    return "vorlane.totp." + Uuid::generate().toString();
}

ServiceType ServiceRecord::serviceType() const {
    return ServiceType::fromRaw(serviceTypeRaw).value_or(ServiceType::customSecret);
}

void ServiceRecord::setServiceType(ServiceType type) {
    serviceTypeRaw = type.rawValue();
}

BillingCycle ServiceRecord::billingCycle() const {
    return BillingCycle::fromRaw(billingCycleRaw).value_or(BillingCycle::none);
}

void ServiceRecord::setBillingCycle(BillingCycle cycle) {
    billingCycleRaw = cycle.rawValue();
}

RiskLevel ServiceRecord::riskLevel() const {
    return RiskLevel::fromRaw(riskLevelRaw).value_or(RiskLevel::low);
}

void ServiceRecord::setRiskLevel(RiskLevel level) {
    riskLevelRaw = level.rawValue();
}

ServiceStatus ServiceRecord::status() const {
    return ServiceStatus::fromRaw(statusRaw).value_or(ServiceStatus::active);
}

void ServiceRecord::setStatus(ServiceStatus newStatus) {
    statusRaw = newStatus.rawValue();
}

std::optional<int> ServiceRecord::daysUntilExpiration(const UserCalendar& calendar) const {
    if (!expirationDate) {
        return std::nullopt;
    }
    return calendar.daysFromNow(*expirationDate);
}

ExpirationState ServiceRecord::expirationState(const UserCalendar& calendar) const {
    if (!expirationDate) {
        return ExpirationState::none;
    }
    const Instant now = calendar.now();
    if (*expirationDate < now) {
        return ExpirationState::expired;
    }
    if (*expirationDate - now >= surelyNormalAfter) {
        return ExpirationState::normal;
    }
    const std::optional<int> days = calendar.daysBetween(now, *expirationDate);
    if (!days || *days < criticalBelowDays) {
        return ExpirationState::critical;
    }
    if (*days <= upcomingUpToDays) {
        return ExpirationState::upcoming;
    }
    if (*days <= soonUpToDays) {
        return ExpirationState::soon;
    }
    return ExpirationState::normal;
}

Decimal ServiceRecord::effectiveMonthlyCost() const {
    if (monthlyCost > Decimal()) {
        return monthlyCost;
    }
    const std::optional<int> months = billingCycle().yearlyCostSpreadMonths();
    if (!months) {
        return Decimal();
    }
    return yearlyCost.dividedBy(Decimal(*months)).value_or(Decimal());
}

std::string ServiceRecord::displaySubtitle() const {
    for (const std::string* candidate : {&provider, &domain, &hostname, &ipAddress}) {
        if (!candidate->empty()) {
            return *candidate;
        }
    }
    return std::string(serviceType().label());
}

} // namespace vorlane
