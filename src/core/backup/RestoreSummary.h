// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace vorlane {

// What a restore does (or, as a forecast, would do) with the records of a backup, counted over
// organizations, services, share records and payments together: added (the vault lacked it),
// updated (in both, the backup's copy newer), left (in both, the vault's copy as new or newer:
// the vault's is kept). Records without a time of change (shares, payments) are added or left.
struct RestoreSummary {
    std::size_t added = 0;
    std::size_t updated = 0;
    std::size_t left = 0;
    std::size_t secretsWritten = 0;

    bool operator==(const RestoreSummary&) const = default;
};

} // namespace vorlane
