// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/CsvTable.h"

#include "util/Whitespace.h"

#include <algorithm>

namespace vorlane {

Result<CsvTable, std::string> CsvTable::read(std::string_view text) {
    auto rows = CsvReader::read(text);
    if (!rows) {
        return rows.error();
    }
    if (rows.value().empty()) {
        return std::string("the file is empty: there is no header row");
    }
    CsvTable table;
    for (const std::string& name : rows.value().front().fields) {
        table.m_header.push_back(normalized(name));
    }
    table.m_rows.assign(std::make_move_iterator(rows.value().begin() + 1),
                        std::make_move_iterator(rows.value().end()));
    return table;
}

std::optional<std::size_t> CsvTable::column(std::string_view name) const {
    const std::string wanted = normalized(name);
    const auto found = std::find(m_header.begin(), m_header.end(), wanted);
    if (found == m_header.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - m_header.begin());
}

bool CsvTable::hasColumns(std::initializer_list<std::string_view> names) const {
    return std::all_of(names.begin(), names.end(),
                       [this](std::string_view name) { return column(name).has_value(); });
}

std::string_view CsvTable::value(const CsvReader::Row& row, std::string_view name) const {
    const auto index = column(name);
    if (!index || *index >= row.fields.size()) {
        return {};
    }
    return row.fields[*index];
}

std::string CsvTable::shapeProblem(const CsvReader::Row& row) const {
    if (row.fields.size() <= m_header.size()) {
        return {};
    }
    return "line " + std::to_string(row.line) + " has " + std::to_string(row.fields.size()) +
           " fields but the header has " + std::to_string(m_header.size()) +
           " (a comma in a value that is not quoted?)";
}

std::string CsvTable::normalized(std::string_view name) {
    std::string result(trimmed(name));
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

} // namespace vorlane
