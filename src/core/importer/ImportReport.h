// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vorlane {

// What an import did, for the sheet's summary and `vorlane-cli import`.
struct ImportReport {
    struct Rejected {
        std::size_t line = 0;
        std::string title;
        std::string reason;
    };

    std::size_t created = 0;              // services written, each with its secrets
    std::size_t organizations = 0;        // organizations that received at least one of them
    std::size_t organizationsCreated = 0; // of those, the ones the import made
    std::size_t duplicatesSkipped = 0;
    std::vector<Rejected> rejected;
    std::vector<std::string> notImported; // secrets with no place in the vault, one sentence each
    std::size_t notReached = 0;           // rows left out because the import stopped early
    bool cancelled = false;
    std::string failure;     // why the import stopped before the end; empty when it did not
    bool isForecast = false; // what an import would do, nothing written (a dry run)

    // "312 services imported into 27 organizations, 4 duplicates skipped, 2 rejected"; a
    // forecast says "would be imported" and "would be skipped".
    std::string summary() const;
};

} // namespace vorlane
