// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/CsvTable.h"
#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// The spreadsheet path: a CSV whose header names the vault's own fields (any subset, any order,
// case ignored). Dates are YYYY-MM-DD (midnight, local time), costs exact decimals with a ".",
// enumerations their raw value or display name in any case, tags one comma-separated text.
// A value that does not read rejects its record with the line and the column.
class VorlaneCsvReader {
public:
    static constexpr std::array<std::string_view, 25> columns{
        "organization", "title",           "serviceType",  "provider",    "hostname",
        "domain",       "ipAddress",       "port",         "loginURL",    "username",
        "emailAddress", "sshKeyReference", "password",     "apiKey",      "purchaseDate",
        "renewalDate",  "expirationDate",  "billingCycle", "monthlyCost", "yearlyCost",
        "autoRenew",    "riskLevel",       "status",       "tags",        "notes",
    };

    // A header with a "title" column; every other format's header is tried first.
    static bool recognizes(const CsvTable& table);
    // An error for a header without "title" or with a column that is not one of `columns`.
    static Result<std::vector<ImportedEntry>, std::string> read(const CsvTable& table);
    // The header row of every column, for a person to fill in a spreadsheet.
    static std::string templateText();
};

} // namespace vorlane
