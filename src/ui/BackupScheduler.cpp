// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupScheduler.h"

#include "backup/AutomaticBackup.h"
#include "store/DataStore.h"
#include "util/Clock.h"

namespace vorlane {

BackupScheduler::BackupScheduler(AutomaticBackup& backups, DataStore& store, Timers& timers,
                                 const Clock& clock)
    : m_backups(backups)
    , m_timers(timers)
    , m_clock(clock)
    , m_nextCheck(Instant::max()) {
    m_storeChanged = ScopedConnection(store.changed, [this] { checkWithin(changeDelay); });
    m_settingsChanged = ScopedConnection(backups.changed, [this] { checkWithin(changeDelay); });
    checkWithin(startDelay);
}

BackupScheduler::~BackupScheduler() {
    m_timers.cancel(m_timer);
}

void BackupScheduler::check() {
    m_timer = 0;
    m_nextCheck = Instant::max();
    checkWithin(checkInterval);
    m_backups.backUpIfDue();
}

void BackupScheduler::checkWithin(std::chrono::milliseconds delay) {
    const Instant at = m_clock.now() + delay;
    if (m_timer != 0 && m_nextCheck <= at) {
        return;
    }
    m_timers.cancel(m_timer);
    m_nextCheck = at;
    m_timer = m_timers.startOneShot(delay, [this] { check(); });
}

} // namespace vorlane
