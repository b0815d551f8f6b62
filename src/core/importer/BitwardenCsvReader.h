// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/CsvTable.h"
#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <string>
#include <vector>

namespace vorlane {

// Bitwarden's CSV export: folder (or collections in an organization's export),favorite,type,
// name,notes,fields,reprompt,login_uri,login_username,login_password,login_totp. Custom fields are
// "name: value" lines; the CSV does not say which were hidden.
class BitwardenCsvReader {
public:
    // Whether the header is this format's.
    static bool recognizes(const CsvTable& table);
    // One entry per record; an error when the header is not this format's.
    static Result<std::vector<ImportedEntry>, std::string> read(const CsvTable& table);
};

} // namespace vorlane
