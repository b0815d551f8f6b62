// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/OnePasswordCsvReader.h"

#include "importer/ImportText.h"

namespace vorlane {

bool OnePasswordCsvReader::recognizes(const CsvTable& table) {
    return table.hasColumns({"Title", "Url", "Username", "Password", "OTPAuth"});
}

Result<std::vector<ImportedEntry>, std::string> OnePasswordCsvReader::read(const CsvTable& table) {
    if (!recognizes(table)) {
        return std::string("line 1 is not 1Password's header (Title, Url, Username, Password, "
                           "OTPAuth, Favorite, Archived, Tags, Notes)");
    }
    std::vector<ImportedEntry> entries;
    entries.reserve(table.rows().size());
    for (const CsvReader::Row& row : table.rows()) {
        ImportedEntry entry = ImportedEntry::at(row.line);
        entry.rejection = table.shapeProblem(row);
        entry.record.title = table.value(row, "Title");
        entry.record.loginURL = table.value(row, "Url");
        entry.record.username = table.value(row, "Username");
        entry.password = table.value(row, "Password");
        entry.totp = table.value(row, "OTPAuth");
        entry.record.tags = ImportText::tags(table.value(row, "Tags"));
        entry.record.notes = table.value(row, "Notes");
        if (ImportText::isTrue(table.value(row, "Archived"))) {
            entry.record.isArchived = true;
            entry.record.setStatus(ServiceStatus::archived);
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace vorlane
