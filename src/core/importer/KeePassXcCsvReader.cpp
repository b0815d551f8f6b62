// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/KeePassXcCsvReader.h"

#include "importer/ImportDate.h"
#include "importer/ImportText.h"

namespace vorlane {

bool KeePassXcCsvReader::recognizes(const CsvTable& table) {
    return table.hasColumns({"Group", "Title", "Username", "Password", "URL", "Notes"});
}

Result<std::vector<ImportedEntry>, std::string> KeePassXcCsvReader::read(const CsvTable& table) {
    if (!recognizes(table)) {
        return std::string("line 1 is not KeePassXC's header (Group, Title, Username, Password, "
                           "URL, Notes)");
    }
    std::vector<ImportedEntry> entries;
    entries.reserve(table.rows().size());
    for (const CsvReader::Row& row : table.rows()) {
        ImportedEntry entry = ImportedEntry::at(row.line);
        entry.rejection = table.shapeProblem(row);
        std::vector<std::string> groups = ImportText::path(table.value(row, "Group"), '/');
        if (!groups.empty()) {
            groups.erase(groups.begin()); // the root group's own name
        }
        entry.groups = std::move(groups);
        entry.record.title = table.value(row, "Title");
        entry.record.username = table.value(row, "Username");
        entry.password = table.value(row, "Password");
        entry.record.loginURL = table.value(row, "URL");
        entry.record.notes = table.value(row, "Notes");
        entry.totp = table.value(row, "TOTP");
        for (const auto& [column, date] : {std::pair{"Created", &entry.createdAt},
                                           std::pair{"Last Modified", &entry.updatedAt}}) {
            const std::string_view text = table.value(row, column);
            if (text.empty()) {
                continue;
            }
            *date = ImportDate::iso8601(text);
            if (!*date && entry.rejection.empty()) {
                entry.rejection = "line " + std::to_string(row.line) + ": \"" + std::string(text) +
                                  "\" in " + column + " is not a date";
            }
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace vorlane
