// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "store/SqliteConnection.h"
#include "store/VaultContext.h"

#include <cstdint>
#include <future>
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
    // SQLite database, a newer schema, an unreadable file) is refused with the reason in `error`;
    // a vault of an earlier schema is accepted, and upgraded by `load`.
    // The check of every page starts here, on a thread of its own, and `load` waits for it: until
    // then the file is only read, so a refused file is left byte for byte as it was.
    static std::optional<VaultFile> open(const std::string& path, std::string& error);

    // Reads every record (logos excepted) into `context`, which must be empty, while the page
    // check runs alongside; only when both pass is the file opened for writing, and a file of an
    // earlier schema upgraded in place (in one transaction). Once, before any
    // other call; on failure `error` is the whole message (a damaged file says so, with its path)
    // and `context` is to be thrown away.
    bool load(VaultContext& context, std::string& error);
    // Writes `changes` in one transaction; on failure nothing is written and `error` says why.
    bool write(const VaultContext::Changes& changes, std::string& error);
    // The organization's logo bytes; nothing when it has none (or the read fails).
    std::optional<std::vector<std::uint8_t>> readLogo(const Uuid& organizationId);

    const std::string& path() const { return m_path; }

private:
    VaultFile(std::string path, SqliteConnection reader, bool hadCompanions,
              std::string storedVersion);

    bool readRecords(VaultContext& context, std::string& error);
    bool openForWriting(std::string& error);

    std::string m_path;
    // The file's schema version as found; a file of an earlier one is upgraded by `load`.
    std::string m_storedVersion;
    // Until `load`: the read-only connection the records are read through, the page check
    // running on a connection of its own, and whether the -wal and -shm files were there before
    // reading (a refused file must not be left with new ones).
    std::optional<SqliteConnection> m_reader;
    std::future<std::optional<std::string>> m_pageCheck;
    bool m_hadCompanions = false;
    // After `load`: the connection everything goes through.
    std::optional<SqliteConnection> m_connection;
};

} // namespace vorlane
