// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceRecord.h"
#include "util/Instant.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

// One entry of another program's export, as its reader understood it and before any of the
// vault's rules (organizations, kinds, duplicates) are applied. Readers fill what the source says
// and nothing more; the mapper decides the rest.
struct ImportedEntry {
    // A custom attribute or extra field that has no field of its own in a service.
    struct Field {
        std::string name;
        std::string value;
        bool isHidden = false; // marked secret in the source: never written into notes
    };

    // Where the entry starts: the line of the file, or for JSON exports the item's number.
    std::size_t line = 0;
    // Folders from the top of the source's tree, without its root; the first names the client.
    std::vector<std::string> groups;
    // An organization named by the source itself (the spreadsheet's column); wins over `groups`.
    std::optional<std::string> organization;
    // The fields the source gives directly. Its id is fresh; `organization`, the secret
    // identifiers and the two timestamps are left for the importer.
    ServiceRecord record;
    bool hasServiceType = false; // the source named the kind, so it is not inferred
    std::string password;
    std::string apiKey;
    std::string totp; // a one-time code's secret or otpauth:// URI, as the source wrote it
    std::vector<Field> fields;
    std::optional<Instant> createdAt;
    std::optional<Instant> updatedAt;
    // When the source says the password was last set, where it keeps that apart from the entry's
    // own last change (a KeePass history, Bitwarden's password revision); otherwise empty.
    std::optional<Instant> passwordChangedAt;
    // Why the reader could not take this entry; empty when it could.
    std::string rejection;

    // An entry with nothing read yet: a fresh record at its fallback kinds.
    static ImportedEntry at(std::size_t line) {
        ImportedEntry entry;
        entry.line = line;
        entry.record = ServiceRecord::created(Instant{});
        return entry;
    }
};

} // namespace vorlane
