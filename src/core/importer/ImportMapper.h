// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/ImportRow.h"
#include "importer/ImportedEntry.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class DataStore;

// Where each imported entry goes and what it becomes:
// - organization: the source's own organization column, else its first folder, else the
//   fallback (`Rule::fallbackOrganization`, "Imported" unless changed); deeper folders become
//   tags. "One organization" puts every row into the fallback and keeps all folders as tags.
// - kind: the one the source names, else inferred from the title, URL and notes by the same
//   rule smart paste uses.
// - URL: the login URL, and the hostname and domain (or IP address) from its host.
// - fields without a home: "Name: value" lines in the notes; hidden ones are secrets, the first
//   becomes the API key and the rest are reported as not imported, never written into the notes.
// - one-time codes: kept for the service's one-time code secret when they read as one, else
//   reported as not imported.
// - duplicates: the same organization, title, username and hostname (case ignored) as a service
//   in the vault or a row earlier in the file.
class ImportMapper {
public:
    static constexpr const char* defaultOrganization = "Imported";

    struct Rule {
        std::string fallbackOrganization = defaultOrganization;
        bool oneOrganization = false;
    };

    // One row per entry, in file order, with the organization rule applied. Duplicates are
    // not marked yet (see `markDuplicates`).
    static std::vector<ImportRow> map(std::vector<ImportedEntry> entries, const Rule& rule);
    // Sets each row's organization and folder tags by `rule`, except where the user typed one.
    static void applyRule(std::vector<ImportRow>& rows, const Rule& rule);
    // Marks rows as duplicates (or back to ready) against the vault and the earlier rows; run
    // again after any edit of an organization. A kept duplicate stays kept.
    static void markDuplicates(std::vector<ImportRow>& rows, const DataStore& store);
    // The key two services are duplicates by.
    static std::string duplicateKey(std::string_view organization, const ServiceRecord& record);
};

} // namespace vorlane
