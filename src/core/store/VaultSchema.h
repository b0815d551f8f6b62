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
class VaultSchema {
public:
    static constexpr std::string_view version = "1.0.0";
    // "Vorl" in ASCII.
    static constexpr std::int32_t applicationId = 0x566f726c;

    // Creates every table and index and records the version. Runs inside the caller's
    // transaction. False on any SQLite error.
    static bool create(SqliteConnection& connection);

    // Nothing when the opened file is a vault this program can use; otherwise the reason, in
    // words for the user ("not a Vorlane vault", "written by a newer version ..."). Only reads,
    // and only the few pages that say what the file is: see `checkPages` for the rest.
    static std::optional<std::string> check(SqliteConnection& connection);
    // Reads every page of the file and checks its structure: nothing when it is sound, otherwise
    // what SQLite found wrong. Takes a while on a large vault; only reads.
    static std::optional<std::string> checkPages(SqliteConnection& connection);
};

} // namespace vorlane
