// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLockFile>
#include <QString>

#include <memory>
#include <optional>
#include <string>

namespace vorlane {

// One program at a time on a vault: a lock file beside the vault ("vault.sqlite.lock"), held by
// the desktop program for as long as it runs and by `vorlane-cli demo` while it writes, so that
// two processes never overwrite each other's changes. A lock left by a process that has died is
// taken over; a lock is never given up because it is old (a window may stay open for weeks).
//
// Both names derive from the vault's canonical path, so "./vault.sqlite", its absolute path and a
// symbolic link to it all meet at the same lock. Main thread.
class VaultLock {
public:
    enum class Outcome {
        acquired,
        heldByAnother, // a live process holds it: see `holder()`
        unavailable,   // the lock file cannot be written (no folder yet, read-only folder)
    };

    struct Holder {
        qint64 pid = 0;
        QString program; // "vorlane", "vorlane-cli"
    };

    explicit VaultLock(const std::string& vaultPath);
    // Releases the lock if held.
    ~VaultLock();
    VaultLock(const VaultLock&) = delete;
    VaultLock& operator=(const VaultLock&) = delete;

    Outcome tryAcquire();
    bool isHeld() const;
    // Who holds the lock, when someone does.
    std::optional<Holder> holder() const;

    // The lock file beside the vault.
    static QString lockFilePath(const std::string& vaultPath);
    // Where the running program listens for the next one's messages: a local socket in the
    // user's runtime folder ($XDG_RUNTIME_DIR), or beside the vault when there is none, never in
    // /tmp; named after a hash of the canonical vault path (the path itself may be longer than a
    // socket name allows, and need not be shown to other users).
    static QString instanceSocketName(const std::string& vaultPath);

private:
    QLockFile m_file;
};

} // namespace vorlane
