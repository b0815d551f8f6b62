// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/CsvTable.h"
#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <string>
#include <vector>

namespace vorlane {

// 1Password's CSV export: Title,Url,Username,Password,OTPAuth,Favorite,Archived,Tags,Notes.
// It has no folders, so every entry goes to the organization chosen for the import.
class OnePasswordCsvReader {
public:
    // Whether the header is this format's.
    static bool recognizes(const CsvTable& table);
    // One entry per record; an error when the header is not this format's.
    static Result<std::vector<ImportedEntry>, std::string> read(const CsvTable& table);
};

} // namespace vorlane
