// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"
#include "backup/RestoreSummary.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace vorlane {

class DataStore;

// Brings a backup's contents into the vault, merged by identity: what the vault lacks is added,
// a record in both is replaced only when the backup's `updatedAt` is newer, nothing is deleted.
// Restoring into an empty vault is the same merge with nothing to compare against. Records keep
// their UUIDs and secret identifiers; the secrets of every added or replaced record are written
// to the secret store under those identifiers.
//
// One transaction: secrets are written a few at a time through `step` (so that the caller can
// show progress and take a cancel between steps on the main loop), then every record is saved in
// one vault save. If anything fails (the secret store refuses, the save fails) or the run is
// cancelled, the vault in memory and on disk is as it was and every secret the run wrote is
// removed again (or given back its earlier value, where it replaced one). The store must outlive
// the run; main thread.
class BackupRestore {
public:
    BackupRestore(DataStore& store, BackupContents contents);
    ~BackupRestore();
    BackupRestore(const BackupRestore&) = delete;
    BackupRestore& operator=(const BackupRestore&) = delete;

    // What the run will do, from the vault as it is now, without changing anything.
    RestoreSummary forecast() const;

    // Writes up to `count` more secrets (at least one); once they are all written, saves the
    // records. False once the run has finished: restored, cancelled or failed.
    bool step(std::size_t count);
    // Undoes what has been written and finishes the run; nothing in the vault changes.
    void cancel();

    std::size_t done() const;
    std::size_t total() const;
    bool finished() const;
    // Once finished: nothing when the restore took place, otherwise why not ("Cancelled.", the
    // secret store's or the vault's reason).
    const std::optional<std::string>& error() const;
    // Once finished without error: what was done.
    const RestoreSummary& summary() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vorlane
