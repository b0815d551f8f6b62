// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/SqliteStatement.h"

#include <sqlite3.h>

namespace vorlane {

SqliteStatement::SqliteStatement(sqlite3* db, sqlite3_stmt* statement)
    : m_db(db)
    , m_statement(statement) {}

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : m_db(other.m_db)
    , m_statement(other.m_statement) {
    other.m_statement = nullptr;
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_statement);
}

void SqliteStatement::bind(int index, std::string_view text) {
    // SQLITE_TRANSIENT: the caller's string may not outlive the statement's next step.
    sqlite3_bind_text(m_statement, index, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
}

void SqliteStatement::bind(int index, std::int64_t value) {
    sqlite3_bind_int64(m_statement, index, value);
}

void SqliteStatement::bind(int index, std::span<const std::uint8_t> bytes) {
    sqlite3_bind_blob(m_statement, index, bytes.data(), static_cast<int>(bytes.size()),
                      SQLITE_TRANSIENT);
}

void SqliteStatement::bindNull(int index) {
    sqlite3_bind_null(m_statement, index);
}

void SqliteStatement::bind(int index, const std::optional<std::int64_t>& value) {
    if (value) {
        bind(index, *value);
    } else {
        bindNull(index);
    }
}

SqliteStatement::Step SqliteStatement::step() {
    switch (sqlite3_step(m_statement)) {
    case SQLITE_ROW:
        return Step::row;
    case SQLITE_DONE:
        return Step::done;
    default:
        return Step::error;
    }
}

void SqliteStatement::reset() {
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

std::string SqliteStatement::text(int column) const {
    return std::string(textView(column));
}

std::string_view SqliteStatement::textView(int column) const {
    const auto* data = sqlite3_column_text(m_statement, column);
    const int size = sqlite3_column_bytes(m_statement, column);
    return data ? std::string_view(reinterpret_cast<const char*>(data),
                                   static_cast<std::size_t>(size))
                : std::string_view();
}

std::int64_t SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

std::optional<std::int64_t> SqliteStatement::optionalInteger(int column) const {
    if (isNull(column)) {
        return std::nullopt;
    }
    return integer(column);
}

std::span<const std::uint8_t> SqliteStatement::bytes(int column) const {
    const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return {data, static_cast<std::size_t>(size)};
}

} // namespace vorlane
