// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/BillingCycle.h"
#include "model/ExpirationState.h"
#include "model/RiskLevel.h"
#include "model/ServiceStatus.h"
#include "model/ServiceType.h"
#include "util/Decimal.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

struct Organization;
class UserCalendar;

// One service or credential of a client. A plain record: identity is the object (and its `id`);
// the vault store owns every record and keeps `organization` and `Organization::services` in step.
// Secrets are never held here, only the secret-store identifiers under which they are kept.
// Enumerated fields are stored as raw strings and read through accessors with fixed fallbacks.
struct ServiceRecord {
    Uuid id;
    Organization* organization = nullptr; // not owned
    std::string serviceTypeRaw;
    std::string title;
    std::string provider;
    std::string hostname;
    std::string domain;
    std::string ipAddress;
    std::string loginURL;
    std::string username;
    std::string emailAddress;
    std::optional<std::int64_t> port;
    std::string sshKeyReference; // a key's name or path, never the key
    std::optional<Instant> purchaseDate;
    std::optional<Instant> renewalDate;    // informational only
    std::optional<Instant> expirationDate; // the only date that drives expiration
    std::string billingCycleRaw;
    Decimal monthlyCost;
    Decimal yearlyCost;
    bool autoRenew = false;
    std::vector<std::string> tags;
    std::string notes;
    std::string riskLevelRaw;
    std::string statusRaw;
    bool isArchived = false;
    Instant createdAt;
    Instant updatedAt;
    std::string secretKeychainID;             // empty when the service has no password
    std::string apiKeyKeychainID;             // empty when the service has no API key
    std::string totpKeychainID;               // empty when the service has no one-time code secret
    std::optional<Instant> passwordChangedAt; // when its password was last stored or replaced

    // A new record: fresh id, createdAt = updatedAt = now, every raw field at its fallback case.
    static ServiceRecord created(Instant now);

    // Fresh secret-store identifiers: "vorlane.secret." / "vorlane.apikey." / "vorlane.totp." and
    // an upper-case UUID.
    static std::string makeSecretKeychainID();
    static std::string makeAPIKeyKeychainID();
    static std::string makeTOTPKeychainID();

    ServiceType serviceType() const; // customSecret for an unknown raw value
    void setServiceType(ServiceType type);
    BillingCycle billingCycle() const; // none for an unknown raw value
    void setBillingCycle(BillingCycle cycle);
    RiskLevel riskLevel() const; // low for an unknown raw value
    void setRiskLevel(RiskLevel level);
    ServiceStatus status() const; // active for an unknown raw value
    void setStatus(ServiceStatus status);

    // Whole days from now to `expirationDate` in the user's calendar, truncated toward zero and
    // negative once passed; nothing without an expiration date.
    std::optional<int> daysUntilExpiration(const UserCalendar& calendar) const;
    ExpirationState expirationState(const UserCalendar& calendar) const;
    // `monthlyCost` when positive, else `yearlyCost` spread by the billing cycle.
    Decimal effectiveMonthlyCost() const;
    // The first non-empty of provider, domain, hostname and IP address, else the kind's label.
    std::string displaySubtitle() const;
};

} // namespace vorlane
