// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/BitwardenCsvReader.h"

#include "importer/ImportText.h"

namespace vorlane {

bool BitwardenCsvReader::recognizes(const CsvTable& table) {
    return (table.column("folder") || table.column("collections")) &&
           table.hasColumns({"type", "name", "login_uri", "login_username", "login_password"});
}

Result<std::vector<ImportedEntry>, std::string> BitwardenCsvReader::read(const CsvTable& table) {
    if (!recognizes(table)) {
        return std::string("line 1 is not Bitwarden's header (folder, favorite, type, name, notes, "
                           "fields, reprompt, login_uri, login_username, login_password, "
                           "login_totp)");
    }
    const bool byCollection = !table.column("folder").has_value();
    std::vector<ImportedEntry> entries;
    entries.reserve(table.rows().size());
    for (const CsvReader::Row& row : table.rows()) {
        ImportedEntry entry = ImportedEntry::at(row.line);
        entry.rejection = table.shapeProblem(row);
        const std::string_view type = table.value(row, "type");
        if (type != "login" && type != "note" && entry.rejection.empty()) {
            entry.rejection = "line " + std::to_string(row.line) + ": a Bitwarden item of type \"" +
                              std::string(type) + "\" is not a login or a secure note";
        }
        // An item in several collections is listed with them joined by commas; the first is
        // its client.
        const std::string_view folder = table.value(row, byCollection ? "collections" : "folder");
        const std::vector<std::string> folders =
            ImportText::path(byCollection ? folder.substr(0, folder.find(',')) : folder, '/');
        entry.groups = folders;
        entry.record.title = table.value(row, "name");
        entry.record.notes = table.value(row, "notes");
        entry.record.username = table.value(row, "login_username");
        entry.password = table.value(row, "login_password");
        const std::string_view uris = table.value(row, "login_uri");
        entry.record.loginURL = uris.substr(0, uris.find(','));
        entry.totp = table.value(row, "login_totp");
        for (auto& [name, value] : ImportText::nameValueLines(table.value(row, "fields"))) {
            entry.fields.push_back({std::move(name), std::move(value), false});
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace vorlane
