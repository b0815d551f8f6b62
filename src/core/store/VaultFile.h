#pragma once

#include "store/SqliteConnection.h"
#include "store/VaultContext.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

// The vault's SQLite file: opening (or creating) it safely, reading it into a context, and
// writing a context's changes in one transaction. The file runs in WAL mode with
// synchronous=FULL, so a committed save survives a crash or power cut and an interrupted one
// leaves the previous state, and with foreign keys on, so the file's own cascade matches the
// context's.
class VaultFile {
public:
    // Opens the vault at `path`, creating it (folder 0700, file 0600) when nothing is there.
    // A file that exists but is not a vault this program can use (another kind of file, another
    // SQLite database, a damaged or unreadable file, a newer schema) is refused with the reason
    // in `error` and is left byte for byte as it was: it is only ever read before it passes.
    static std::optional<VaultFile> open(const std::string& path, std::string& error);

    // Reads every record (logos excepted) into `context`, which must be empty.
    bool load(VaultContext& context, std::string& error);
    // Writes `changes` in one transaction; on failure nothing is written and `error` says why.
    bool write(const VaultContext::Changes& changes, std::string& error);
    // The organization's logo bytes; nothing when it has none (or the read fails).
    std::optional<std::vector<std::uint8_t>> readLogo(const Uuid& organizationId);

    const std::string& path() const { return m_path; }

private:
    VaultFile(std::string path, SqliteConnection connection);

    std::string m_path;
    SqliteConnection m_connection;
};

} // namespace vorlane
