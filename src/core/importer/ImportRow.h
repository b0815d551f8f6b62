// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceRecord.h"
#include "util/Instant.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

// One entry of an export as it will be imported: the service it becomes, its organization by
// name and its secrets, with what the preview shows and lets the user change (the organization,
// the kind, keeping a duplicate).
struct ImportRow {
    enum class Status {
        ready,     // will be imported
        duplicate, // matches a service already in the vault or earlier in the file
        rejected,  // cannot be imported; `reason` says why
    };

    std::size_t line = 0; // where the entry starts in the file (the item's number for JSON)
    std::string organization;
    ServiceRecord record; // not yet in the vault: no organization, no secret identifiers
    std::string password;
    std::string apiKey;
    std::string totp; // a one-time code's secret or otpauth:// URI, checked to be one
    std::optional<Instant> createdAt;
    std::optional<Instant> updatedAt;
    // When the password was last set by the source's account; empty when the source does not
    // know, and the import dates it then.
    std::optional<Instant> passwordChangedAt;
    Status status = Status::ready;
    std::string reason;
    bool keepDuplicate = false; // the user chose to import this duplicate anyway
    // Secrets the entry had that the vault has no place for, one sentence each.
    std::vector<std::string> notImported;

    // What the organization rule works from: the source's folders, its own organization column,
    // its own tags, and whether the user typed an organization for this row.
    std::vector<std::string> groups;
    std::optional<std::string> sourceOrganization;
    std::vector<std::string> sourceTags;
    bool organizationEdited = false;

    bool willImport() const {
        return status == Status::ready || (status == Status::duplicate && keepDuplicate);
    }
};

} // namespace vorlane
