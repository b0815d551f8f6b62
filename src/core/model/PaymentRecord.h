// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <optional>
#include <string>

namespace vorlane {

struct ServiceRecord;

// What was really paid for a service once: written by "Mark Renewed" with the charge of the
// period it renewed, or entered by hand for a payment made elsewhere. Owned by the vault store,
// which deletes a service's payments with the service.
struct PaymentRecord {
    Uuid id;
    ServiceRecord* service = nullptr; // not owned
    Instant datePaid;
    // The period the payment covers, both ends included; nothing for a payment entered without
    // one (a one-time purchase, say).
    std::optional<Instant> periodFrom;
    std::optional<Instant> periodTo;
    Decimal amount; // in the vault's currency, exact
    std::string note;
};

} // namespace vorlane
