// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ShareMethod.h"
#include "util/Instant.h"
#include "util/Uuid.h"

#include <optional>
#include <string>
#include <vector>

namespace vorlane {

struct Organization;

// One act of sharing a selection of an organization's services. Owned by the vault store;
// `organization` is the inverse of `Organization::shareHistory`.
struct ShareRecord {
    Uuid id;
    Organization* organization = nullptr; // not owned
    std::vector<Uuid> serviceIDs;
    std::string recipientLabel;
    std::string notes;
    bool includesSecrets = false;
    std::vector<std::string> redactedFields;
    std::optional<Instant> expirationDate; // the share's own expiry, when the user set one
    bool isRevoked = false;
    Instant sharedAt;
    std::string shareMethodRaw;

    // Nothing when the raw value is not a known method.
    std::optional<ShareMethod> shareMethod() const { return ShareMethod::fromRaw(shareMethodRaw); }
};

} // namespace vorlane
