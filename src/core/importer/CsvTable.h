// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "importer/CsvReader.h"
#include "util/Result.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// A CSV file read as a header row and records under it, for the readers of the password
// managers' CSV exports. Column names are matched without regard to case or surrounding spaces.
class CsvTable {
public:
    // The rows of `text`; an error when the CSV itself cannot be read or there is no row at all.
    static Result<CsvTable, std::string> read(std::string_view text);

    const std::vector<std::string>& header() const { return m_header; }
    // Every record below the header, in file order.
    const std::vector<CsvReader::Row>& rows() const { return m_rows; }

    // Where the column is; nothing when the header has no such column.
    std::optional<std::size_t> column(std::string_view name) const;
    // Whether the header holds every one of `names`.
    bool hasColumns(std::initializer_list<std::string_view> names) const;
    // The record's value in the named column; empty when the column or the value is missing.
    std::string_view value(const CsvReader::Row& row, std::string_view name) const;
    // Why a record cannot be read against the header (more fields than columns), or empty.
    std::string shapeProblem(const CsvReader::Row& row) const;

    // A column name as the header is compared: trimmed and lower-cased (ASCII).
    static std::string normalized(std::string_view name);

private:
    std::vector<std::string> m_header; // normalized
    std::vector<CsvReader::Row> m_rows;
};

} // namespace vorlane
