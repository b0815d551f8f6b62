// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/CsvReader.h"

namespace vorlane {

Result<std::vector<CsvReader::Row>, std::string> CsvReader::read(std::string_view text) {
    std::vector<Row> rows;
    Row row;
    std::string field;
    std::size_t line = 1;
    row.line = line;
    bool rowHasContent = false; // a blank line is no record
    std::size_t i = 0;
    const auto endRow = [&] {
        if (rowHasContent) {
            row.fields.push_back(std::move(field));
            rows.push_back(std::move(row));
        }
        row = Row{};
        field.clear();
        rowHasContent = false;
    };
    while (i < text.size()) {
        const char c = text[i];
        if (c == '"' && field.empty()) {
            // A quoted field, to its closing quote; "" inside stands for one quote.
            const std::size_t openedOn = line;
            rowHasContent = true;
            ++i;
            bool closed = false;
            while (i < text.size()) {
                if (text[i] == '"') {
                    if (i + 1 < text.size() && text[i + 1] == '"') {
                        field += '"';
                        i += 2;
                        continue;
                    }
                    ++i;
                    closed = true;
                    break;
                }
                if (text[i] == '\n' ||
                    (text[i] == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n'))) {
                    ++line;
                }
                field += text[i++];
            }
            if (!closed) {
                return "line " + std::to_string(openedOn) +
                       ": a quoted field is never closed (a missing \")";
            }
            continue;
        }
        if (c == ',') {
            rowHasContent = true;
            row.fields.push_back(std::move(field));
            field.clear();
            ++i;
            continue;
        }
        if (c == '\r' || c == '\n') {
            i += (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
            endRow();
            ++line;
            row.line = line;
            continue;
        }
        rowHasContent = true;
        field += c;
        ++i;
    }
    endRow();
    return rows;
}

} // namespace vorlane
