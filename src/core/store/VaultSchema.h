// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

class SqliteConnection;

// The tables of a vault file and the marks that say a file is one. The schema version is kept as
// text in the file's `vault_meta` table; SQLite's application id tells a vault apart from any
// other SQLite database before a single table is read.
//
// A file of an earlier schema is upgraded in place, one step per version. It is first read as it
// is (the columns it lacks read as the defaults the upgrade gives them), and upgraded only once it
// has been read and checked whole, so that a file refused for damage is never written to.
class VaultSchema {
public:
    static constexpr std::string_view version = "1.1.0";
    // "Vorl" in ASCII.
    static constexpr std::int32_t applicationId = 0x566f726c;

    // Creates every table and index and records the version. Runs inside the caller's
    // transaction. False on any SQLite error.
    static bool create(SqliteConnection& connection);

    // Nothing when the opened file is a vault this program can use, as it is or once upgraded,
    // with its schema version in `stored`; otherwise the reason, in words for the user ("not a
    // Vorlane vault", "written by a newer version ..."). Only reads, and only the few pages that
    // say what the file is: see `checkPages` for the rest.
    static std::optional<std::string> check(SqliteConnection& connection, std::string& stored);
    // Reads every page of the file and checks its structure: nothing when it is sound, otherwise
    // what SQLite found wrong. Takes a while on a large vault; only reads.
    static std::optional<std::string> checkPages(SqliteConnection& connection);

    // How a file of schema `stored` (one `check` accepted) is read before it is upgraded: what
    // selects `column` of `table` (the column itself, or the value an upgrade would give it), and
    // whether `table` is there at all.
    static std::string selectable(std::string_view stored, std::string_view table,
                                  std::string_view column);
    static bool hasTable(std::string_view stored, std::string_view table);
    // Brings a file of schema `stored` to `version`, one step per version in order, and records
    // the new version. Runs inside the caller's transaction. False on any SQLite error.
    static bool upgrade(SqliteConnection& connection, std::string_view stored);
};

} // namespace vorlane
