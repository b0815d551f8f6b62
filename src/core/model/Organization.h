// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"
#include "util/Decimal.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

struct ServiceRecord;
struct ShareRecord;
class UserCalendar;

// A client. Owned by the vault store, which also owns the records `services` and `shareHistory`
// point to (relationship order is insertion order) and deletes them with the organization.
struct Organization {
    Uuid id;
    std::string name;
    std::string projectName;
    std::optional<std::vector<std::uint8_t>> logoData;
    std::string contactName;
    std::string contactEmail;
    std::string contactPhone;
    std::string website;
    std::string notes;
    std::vector<std::string> tags;
    bool isActive = true;
    bool isArchived = false;
    bool isFavorite = false;
    Instant createdAt;
    Instant updatedAt;
    std::vector<ServiceRecord*> services;   // not owned
    std::vector<ShareRecord*> shareHistory; // not owned

    // A new organization: fresh id, createdAt = updatedAt = now.
    static Organization created(Instant now);

    // Active (an unknown status counts as active) and not archived, in relationship order.
    std::vector<ServiceRecord*> activeServices() const;
    // Upcoming or critical: fewer than 8 days left and not yet expired; archived ones included.
    std::vector<ServiceRecord*> expiringServices(const UserCalendar& calendar) const;
    std::vector<ServiceRecord*> expiredServices(const UserCalendar& calendar) const;
    // The earliest expiration date still ahead of now, over every service; past dates are skipped.
    std::optional<Instant> nextExpiration(const UserCalendar& calendar) const;
    // Sum of the effective monthly costs of the services that are not archived.
    Decimal monthlyCost() const;
    // The same sum with each service's effective monthly cost taken from `effectiveCost` (which
    // must give `ServiceRecord::effectiveMonthlyCost`, from a cache of it, say).
    Decimal monthlyCost(const std::function<Decimal(const ServiceRecord&)>& effectiveCost) const;
    // Per non-archived service: `yearlyCost` when positive, else the stored `monthlyCost` times 12.
    Decimal yearlyCost() const;
    // First letters of the first two words (split on spaces), upper-cased: "acme corp ltd" is "AC".
    std::string initials() const;
    // One of eight avatar colours, picked by a hash of the name.
    Palette::Color avatarColor() const;
};

} // namespace vorlane
