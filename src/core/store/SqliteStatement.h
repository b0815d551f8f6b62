// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace vorlane {

// One prepared SQLite statement. Parameters are bound by 1-based index; columns are read by
// 0-based index after `step` returned `row`. Moves only; finalised on destruction. Must not outlive
// its connection.
class SqliteStatement {
public:
    enum class Step { row, done, error };

    SqliteStatement(sqlite3* db, sqlite3_stmt* statement);
    SqliteStatement(SqliteStatement&& other) noexcept;
    SqliteStatement& operator=(SqliteStatement&&) = delete;
    SqliteStatement(const SqliteStatement&) = delete;
    ~SqliteStatement();

    void bind(int index, std::string_view text);
    void bind(int index, std::int64_t value);
    void bind(int index, bool value) { bind(index, std::int64_t{value ? 1 : 0}); }
    void bind(int index, std::span<const std::uint8_t> bytes);
    void bindNull(int index);
    // Binds the optional's value, or NULL when it is empty.
    void bind(int index, const std::optional<std::int64_t>& value);

    Step step();
    // Makes the statement ready to run again with new bindings.
    void reset();

    bool isNull(int column) const;
    std::string text(int column) const;
    std::string_view textView(int column) const; // valid until the next step
    std::int64_t integer(int column) const;
    std::optional<std::int64_t> optionalInteger(int column) const;
    std::span<const std::uint8_t> bytes(int column) const; // valid until the next step

private:
    sqlite3* m_db;
    sqlite3_stmt* m_statement;
};

} // namespace vorlane
