// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"
#include "backup/RestoreSummary.h"
#include "util/Result.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorlane {

class BackupRestore;
class DataStore;
class UserCalendar;

// The restore sheet: choose a backup file (a file that is not one, or is cut short, or comes
// from a newer version, is refused at once), type its password (opened off the main thread: the
// key derivation takes a moment), read what it holds and what the restore will do, then restore
// a few secrets per turn of the main loop with progress and cancel, and read what was done.
// Nothing in the vault or the keyring changes before `startRestore`, and a cancelled or failed
// restore leaves both as they were. Holds every text, rule and enabled state the sheet shows.
// Main thread only; the store and calendar must outlive it.
class RestoreFlow {
public:
    enum class Step { chooseFile, password, summary, restoring, done };

    static constexpr const char* title = "Restore from Backup";
    static constexpr const char* fileExplanation =
        "Bring back the organizations, services and secrets of a Vorlane backup. A vault that "
        "already has records keeps them: the backup is merged in, and nothing is deleted.";
    static constexpr const char* openingText = "Opening the backup\u2026";

    // What the worker opens: the file's bytes and the password typed. `run` names the attempt,
    // so that the result of a cancelled one is recognised.
    struct Job {
        std::shared_ptr<const std::string> bytes;
        std::string password;
        std::uint64_t run = 0;
    };

    RestoreFlow(DataStore& store, const UserCalendar& calendar);
    ~RestoreFlow();
    RestoreFlow(const RestoreFlow&) = delete;
    RestoreFlow& operator=(const RestoreFlow&) = delete;

    Step step() const { return m_step; }
    std::string subtitle() const;
    // The step indicator's last marker reached: File, Password, Summary, Restore.
    int lastReachedMarker() const;

    // -- Choose the file: read and its header checked at once. False, with `fileError` set and
    // the flow on this step, when it cannot be read or is not a backup this version can open.
    bool chooseFile(const std::string& path);
    const std::string& path() const { return m_path; }
    const std::optional<std::string>& fileError() const { return m_fileError; }

    // -- Password.
    std::string password;
    // Starts opening the backup; nothing while one is being opened or without a password.
    std::optional<Job> unlock();
    bool isOpening() const { return m_isOpening; }
    // The outcome of attempt `run`: the summary step on success, otherwise the reason under the
    // password field ("The password is wrong or the backup is damaged."). Dropped when the
    // attempt was cancelled.
    void opened(std::uint64_t run, Result<BackupContents, std::string> contents);
    const std::optional<std::string>& passwordError() const { return m_passwordError; }

    // -- Summary: what the backup holds, as label and value rows (when it was made, its
    // organization, service and secret counts, and the secrets it lacks when there are any),
    // and what the restore will do.
    std::vector<std::pair<std::string, std::string>> contentsRows() const;
    std::string planText() const;

    // -- Restoring.
    void startRestore();
    // Writes up to `count` more secrets, then, once all are written, saves the records; false
    // once the restore has finished (then the step is done).
    bool restoreStep(std::size_t count);
    // From 0 to 1.
    double progress() const;
    std::string progressText() const; // "Writing secrets to the keyring: 120 of 298…"

    // -- Done.
    bool restored() const;
    std::string resultText() const;

    // Cancel while opening (the result is dropped) or restoring (everything written is undone);
    // the footer's Cancel and Escape go here first, and close the sheet only when it returns
    // false (nothing was under way).
    bool cancel();

    // -- Footer.
    bool showsBack() const;
    void back();
    std::string mainButtonTitle() const;
    bool mainButtonEnabled() const;

private:
    DataStore& m_store;
    const UserCalendar& m_calendar;
    Step m_step = Step::chooseFile;
    std::string m_path;
    std::optional<std::string> m_fileError;
    std::shared_ptr<const std::string> m_bytes;
    bool m_isOpening = false;
    std::uint64_t m_run = 0;
    std::optional<std::string> m_passwordError;
    Instant m_createdAt;
    std::string m_holds;
    std::size_t m_missingSecrets = 0;
    bool m_vaultWasEmpty = true;
    RestoreSummary m_forecast;
    std::unique_ptr<BackupRestore> m_restore;
    bool m_cancelled = false;
};

} // namespace vorlane
