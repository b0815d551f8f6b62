// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "util/Uuid.h"

#include <optional>
#include <vector>

namespace vorlane {

// Records to bring into the vault together with DataStore::saveBatch, each naming its owner by
// identity (the records' own owner pointers and child lists are ignored). Organizations and
// services are added, or replace the vault's record of the same `id`; shares and payments are
// only ever added. Plain values, owned by whoever holds the batch.
struct RecordBatch {
    struct Service {
        ServiceRecord record;
        std::optional<Uuid> organizationId; // nothing: the service belongs to no organization
    };
    struct Share {
        ShareRecord record;
        Uuid organizationId;
    };
    struct Payment {
        PaymentRecord record;
        Uuid serviceId;
    };

    // `logoData` is the organization's logo as it is to be (nothing: no logo).
    std::vector<Organization> organizations;
    std::vector<Service> services;
    std::vector<Share> shares;
    std::vector<Payment> payments;
};

} // namespace vorlane
