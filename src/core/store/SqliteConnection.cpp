// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/SqliteConnection.h"

#include <sqlite3.h>

namespace vorlane {

std::optional<SqliteConnection> SqliteConnection::open(const std::string& path, Mode mode,
                                                       std::string& error) {
    int flags = SQLITE_OPEN_NOMUTEX;
    switch (mode) {
    case Mode::readOnly:
        flags |= SQLITE_OPEN_READONLY;
        break;
    case Mode::readWrite:
        flags |= SQLITE_OPEN_READWRITE;
        break;
    case Mode::readWriteCreate:
        flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
        break;
    }
    sqlite3* db = nullptr;
    const int status = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
    if (status != SQLITE_OK) {
        error = db ? sqlite3_errmsg(db) : sqlite3_errstr(status);
        sqlite3_close_v2(db);
        return std::nullopt;
    }
    sqlite3_extended_result_codes(db, 1);
    // Another Vorlane process (the CLI beside the window) may hold the write lock for a moment.
    sqlite3_busy_timeout(db, 2000);
    return SqliteConnection(db);
}

SqliteConnection::SqliteConnection(sqlite3* db)
    : m_db(db) {}

SqliteConnection::SqliteConnection(SqliteConnection&& other) noexcept
    : m_db(other.m_db) {
    other.m_db = nullptr;
}

SqliteConnection::~SqliteConnection() {
    sqlite3_close_v2(m_db);
}

bool SqliteConnection::execute(std::string_view sql) {
    const std::string statement(sql);
    return sqlite3_exec(m_db, statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::optional<SqliteStatement> SqliteConnection::prepare(std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_db, sql.data(), static_cast<int>(sql.size()), &statement, nullptr) !=
        SQLITE_OK) {
        sqlite3_finalize(statement);
        return std::nullopt;
    }
    return SqliteStatement(m_db, statement);
}

std::optional<std::string> SqliteConnection::queryText(std::string_view sql) {
    auto statement = prepare(sql);
    if (!statement || statement->step() != SqliteStatement::Step::row) {
        return std::nullopt;
    }
    return statement->text(0);
}

std::optional<std::int64_t> SqliteConnection::queryInteger(std::string_view sql) {
    auto statement = prepare(sql);
    if (!statement || statement->step() != SqliteStatement::Step::row) {
        return std::nullopt;
    }
    return statement->integer(0);
}

std::string SqliteConnection::lastError() const {
    return sqlite3_errmsg(m_db);
}

bool SqliteConnection::isReadOnly() const {
    return sqlite3_db_readonly(m_db, "main") == 1;
}

} // namespace vorlane
