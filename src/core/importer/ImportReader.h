// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/ImportFormat.h"
#include "importer/ImportedEntry.h"
#include "util/Result.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// What one export file held, in file order, and the format it was read as.
struct ImportedFile {
    ImportFormat format = ImportFormat::vorlaneCsv;
    std::vector<ImportedEntry> entries;
};

// The front door of the importer: reads a file with a size cap, tells its format from its
// content, and hands it to that format's reader. Every failure is a sentence for the user that
// names where it happened; a file that fails here gives nothing at all.
class ImportReader {
public:
    // Far beyond any real export (10,000 entries of KeePass XML are about 15 MB), low enough
    // that a wrong file is refused before it is read into memory.
    static constexpr std::size_t maxBytes = 64 * 1024 * 1024;

    // `read` of the file at `path`; an error when it cannot be read or is larger than
    // `maxBytes` (then it is not read into memory at all).
    static Result<ImportedFile, std::string> readFile(const std::string& path,
                                                      std::optional<ImportFormat> format = {});
    // The format the content is in (XML root, JSON keys, the CSV header); nothing when none fits.
    static std::optional<ImportFormat> detect(std::string_view bytes);
    // Reads `bytes` as `format`, or as the detected format when none is given. UTF-8 only: a
    // leading byte-order mark is skipped, and a binary file or one in another encoding is refused.
    static Result<ImportedFile, std::string> read(std::string_view bytes,
                                                  std::optional<ImportFormat> format = {});
};

} // namespace vorlane
