// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/LastPassCsvReader.h"

#include "importer/ImportText.h"

namespace vorlane {

namespace {

// LastPass's marker for an entry that is a secure note rather than a site.
constexpr std::string_view secureNoteURL = "http://sn";

} // namespace

bool LastPassCsvReader::recognizes(const CsvTable& table) {
    return table.hasColumns({"url", "username", "password", "extra", "name", "grouping"});
}

Result<std::vector<ImportedEntry>, std::string> LastPassCsvReader::read(const CsvTable& table) {
    if (!recognizes(table)) {
        return std::string("line 1 is not LastPass's header (url, username, password, totp, "
                           "extra, name, grouping, fav)");
    }
    std::vector<ImportedEntry> entries;
    entries.reserve(table.rows().size());
    for (const CsvReader::Row& row : table.rows()) {
        ImportedEntry entry = ImportedEntry::at(row.line);
        entry.rejection = table.shapeProblem(row);
        const std::string_view url = table.value(row, "url");
        if (url != secureNoteURL) {
            entry.record.loginURL = url;
        }
        entry.record.username = table.value(row, "username");
        entry.password = table.value(row, "password");
        entry.totp = table.value(row, "totp");
        entry.record.notes = table.value(row, "extra");
        entry.record.title = table.value(row, "name");
        entry.groups = ImportText::path(table.value(row, "grouping"), '\\');
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace vorlane
