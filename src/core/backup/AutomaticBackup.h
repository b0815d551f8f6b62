// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/AutomaticBackupSettings.h"
#include "backup/LastBackup.h"
#include "util/ScopedConnection.h"
#include "util/Signal.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace vorlane {

class DataStore;
class NotificationCenter;
class PreferenceStore;
class Timers;
class UserCalendar;

// The backups the program makes by itself into a folder of the user's choice (one that a sync
// program keeps in step across machines, say): at most once a day, and only when the vault has
// changed since the last one, so that a week away from the program does not push the folder's
// older backups out with identical copies. A backup is due when it is switched on, a folder is
// chosen and a password is stored, the vault has changed since the last backup (every change the
// store announces counts, remembered across restarts), and none succeeded yet on this calendar
// day. Each success leaves only the newest `keepCount` backups in the folder (BackupRotation).
//
// The password is kept only in the secret store, under `passwordAccount`. The last attempt's time
// and result are kept in the preferences (LastBackup). A failed backup that nobody asked for is
// shown once as a desktop notification; the same reason is not shown again until a backup has
// succeeded or the reason changes.
//
// A backup takes the vault's snapshot on the calling (main) thread, seals and writes it on a
// thread of its own (the key derivation takes a moment and 64 MiB), and records the result back
// on the main loop through `timers`. Main thread; the store, preferences, calendar, timers and
// centre must outlive this object, whose destructor waits for a backup being written.
class AutomaticBackup {
public:
    static constexpr std::string_view passwordAccount = "vorlane.backup";
    static constexpr std::string_view failureIdentifier = "vorlane.backup.failed";
    static constexpr std::string_view failureCategory = "BACKUP_FAILED";
    static constexpr std::string_view failureTitle = "Automatic Backup Failed";

    // The reasons a backup fails before anything is written.
    static constexpr std::string_view noFolder = "No backup folder is chosen.";
    static constexpr std::string_view passwordUnreadable =
        "The backup password could not be read from the secret store.";
    static constexpr std::string_view secretsUnreadable =
        "The secret store could not be read, so the backup would lack every password.";
    // Ahead of the reason when the backup was written but older ones could not be removed.
    static constexpr std::string_view rotationFailed =
        "Backed up, but older backups could not be removed: ";

    AutomaticBackup(DataStore& store, PreferenceStore& preferences, const UserCalendar& calendar,
                    Timers& timers, NotificationCenter& notifications);
    ~AutomaticBackup();
    AutomaticBackup(const AutomaticBackup&) = delete;
    AutomaticBackup& operator=(const AutomaticBackup&) = delete;

    // After every change of the settings, the password, or a backup starting or ending.
    Signal<> changed;

    AutomaticBackupSettings settings() const;
    void setSettings(const AutomaticBackupSettings& settings);

    // Whether a password was stored here (the secret store is not asked, so this is cheap).
    bool hasPassword() const;
    // Stores `password` in the secret store (the caller has checked it against BackupPassword);
    // false when the store refused it: backups then fail, and say why, until one is stored.
    bool setPassword(std::string_view password);

    std::optional<LastBackup> lastBackup() const;
    bool isRunning() const { return m_running; }
    // Whether a backup is due now (never while one runs).
    bool isDue() const;

    // Starts a backup when one is due; whether one started.
    bool backUpIfDue();
    // Starts one at once, due or not (the user's "Back Up Now"); false while one runs. A
    // missing folder or password is recorded as the attempt's failure.
    bool backUpNow();

private:
    enum class Trigger { schedule, user };
    struct Attempt {
        Trigger trigger;
        Instant at;
        std::string folder;
        std::uint64_t changesSeen;
    };

    void start(Trigger trigger);
    void finish(const Attempt& attempt, std::optional<std::string> error);
    // `folder`: where the backup was to go.
    void notifyFailure(const std::string& reason, const std::string& folder);
    void noteVaultChanged();

    DataStore& m_store;
    PreferenceStore& m_preferences;
    const UserCalendar& m_calendar;
    Timers& m_timers;
    NotificationCenter& m_notifications;
    bool m_running = false;
    // How many changes the store announced in this run: a backup clears the "changed" mark only
    // when no change came while it was being written.
    std::uint64_t m_changes = 0;
    ScopedConnection m_storeChanged;
    // Tells a result posted by the writer that this object is gone.
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    std::thread m_writer;
};

} // namespace vorlane
