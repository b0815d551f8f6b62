// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/CsvTable.h"
#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <string>
#include <vector>

namespace vorlane {

// LastPass's CSV export: url,username,password,totp,extra,name,grouping,fav (older exports
// lack totp). The url "http://sn" marks a secure note, whose text is in extra; grouping names
// the folders, separated by "\\".
class LastPassCsvReader {
public:
    // Whether the header is this format's.
    static bool recognizes(const CsvTable& table);
    // One entry per record; an error when the header is not this format's.
    static Result<std::vector<ImportedEntry>, std::string> read(const CsvTable& table);
};

} // namespace vorlane
