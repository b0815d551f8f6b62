// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"
#include "util/ScopedConnection.h"
#include "util/Timers.h"

#include <chrono>

namespace vorlane {

class AutomaticBackup;
class Clock;
class DataStore;

// When the running program asks whether an automatic backup is due: a minute after start (not
// during it: the snapshot reads every secret), every hour after that, and a few minutes after the
// vault or the backup settings change, so that switching backups on or editing records is
// followed by a backup without waiting for the hour. AutomaticBackup decides whether one is due.
// Main thread; the backups, store, timers and clock must outlive it.
class BackupScheduler {
public:
    static constexpr std::chrono::minutes startDelay{1};
    static constexpr std::chrono::hours checkInterval{1};
    static constexpr std::chrono::minutes changeDelay{5};

    BackupScheduler(AutomaticBackup& backups, DataStore& store, Timers& timers, const Clock& clock);
    ~BackupScheduler();
    BackupScheduler(const BackupScheduler&) = delete;
    BackupScheduler& operator=(const BackupScheduler&) = delete;

private:
    void check();
    // Moves the next check to `delay` from now, unless it comes sooner already.
    void checkWithin(std::chrono::milliseconds delay);

    AutomaticBackup& m_backups;
    Timers& m_timers;
    const Clock& m_clock;
    Timers::TimerId m_timer = 0;
    Instant m_nextCheck;
    ScopedConnection m_storeChanged;
    ScopedConnection m_settingsChanged;
};

} // namespace vorlane
