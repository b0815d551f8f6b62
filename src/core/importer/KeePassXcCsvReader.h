// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/CsvTable.h"
#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <string>
#include <vector>

namespace vorlane {

// KeePassXC's CSV export: Group,Title,Username,Password,URL,Notes, and in newer versions
// TOTP,Icon,Last Modified,Created. The group is the path from the root group's name, joined by
// "/"; the root's own name is dropped.
class KeePassXcCsvReader {
public:
    // Whether the header is this format's.
    static bool recognizes(const CsvTable& table);
    // One entry per record; an error when the header is not this format's.
    static Result<std::vector<ImportedEntry>, std::string> read(const CsvTable& table);
};

} // namespace vorlane
