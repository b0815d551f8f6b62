// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "store/SqliteStatement.h"

#include <optional>
#include <string>
#include <string_view>

struct sqlite3;

namespace vorlane {

// One SQLite connection. Errors are values: a failed call returns nothing or false, and
// `lastError` says why in SQLite's words. Moves only; closed on destruction. One thread at a time.
class SqliteConnection {
public:
    enum class Mode { readOnly, readWrite, readWriteCreate };

    // Nothing when the file cannot be opened; `error` then holds the reason.
    static std::optional<SqliteConnection> open(const std::string& path, Mode mode,
                                                std::string& error);

    SqliteConnection(SqliteConnection&& other) noexcept;
    SqliteConnection& operator=(SqliteConnection&&) = delete;
    SqliteConnection(const SqliteConnection&) = delete;
    ~SqliteConnection();

    // Runs one or more statements that return no rows.
    bool execute(std::string_view sql);
    // Nothing when the SQL does not compile (unknown table, syntax, not a database).
    std::optional<SqliteStatement> prepare(std::string_view sql);
    // The first column of the first row as text; nothing on error or when there is no row.
    std::optional<std::string> queryText(std::string_view sql);
    std::optional<std::int64_t> queryInteger(std::string_view sql);

    std::string lastError() const;
    bool isReadOnly() const;
    sqlite3* handle() const { return m_db; }

private:
    explicit SqliteConnection(sqlite3* db);

    sqlite3* m_db;
};

} // namespace vorlane
