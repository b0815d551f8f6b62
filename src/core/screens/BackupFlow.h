// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"
#include "passwords/PasswordStrength.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorlane {

class AuthManager;
class DataStore;
class UserCalendar;

// The back-up sheet: the user proves presence (a backup holds every secret), chooses the backup
// password twice, then where to save; the vault is read on the main thread, sealed off it (the
// key derivation takes a moment), and written whole or not at all. Holds every text, rule and
// enabled state the sheet shows; the widget draws them, shows the save dialog and runs the
// sealing on a worker thread. Main thread only; the store, auth and calendar must outlive it.
class BackupFlow {
public:
    enum class Step { authenticate, password, working, done };

    static constexpr const char* title = "Back Up Vault";
    static constexpr const char* authenticationReason = "Authenticate to back up your vault";
    static constexpr const char* authenticationExplanation =
        "A backup holds every password, API key and one-time code of your vault, so Vorlane "
        "asks for your system password before it reads them.";
    static constexpr const char* authenticationRefused =
        "Authentication is required to back up your vault.";
    static constexpr const char* passwordExplanation =
        "The backup is encrypted with this password. Keep it somewhere safe: without it the "
        "backup cannot be opened, and nobody can recover it for you.";
    static constexpr const char* keyringUnreadable =
        "The keyring could not be read, so no backup was made. Unlock it and try again.";
    // The system could not give the key derivation its memory or the random source failed.
    static constexpr const char* sealFailed =
        "The backup could not be encrypted: the system is short of memory or randomness.";
    static constexpr const char* progressText = "Encrypting and saving the backup\u2026";

    // What the worker seals: the vault as read at the start, and the password it is sealed
    // with. `run` names the attempt, so that the result of a cancelled one is recognised.
    struct Job {
        BackupContents contents;
        std::string password;
        std::uint64_t run = 0;
    };

    BackupFlow(DataStore& store, AuthManager& auth, const UserCalendar& calendar);
    ~BackupFlow();
    BackupFlow(const BackupFlow&) = delete;
    BackupFlow& operator=(const BackupFlow&) = delete;

    Step step() const { return m_step; }
    std::string subtitle() const;
    // The step indicator's last marker reached: Authenticate, Password, Save.
    int lastReachedMarker() const;
    // What went wrong on the current step (refused authentication, unreadable keyring, a failed
    // write); cleared by the next attempt.
    const std::optional<std::string>& error() const { return m_error; }

    // -- Authenticate. Asks through the app's authentication; `answered` runs once on the main
    // loop after the reply has moved the flow on (or left it here with `error` set). Ignored
    // while a request is out.
    void authenticate(std::function<void()> answered);
    bool isAuthenticating() const { return m_isAuthenticating; }

    // -- Password, typed twice.
    std::string password;
    std::string confirmation;
    // A password from the generator goes into both fields: there is nothing to mistype.
    void useGeneratedPassword(const std::string& generated);
    // The meter under the first field, while it holds a password.
    std::optional<PasswordStrength::Estimate> passwordStrength() const;
    // Under the first field while it holds a password too short or too easy to guess for a file
    // that may leave the machine.
    std::optional<std::string> passwordMessage() const;
    // Under the second field once something is typed there that differs from the first.
    std::optional<std::string> confirmationMessage() const;
    // "Vorlane-Backup-YYYY-MM-DD.vorlanebackup", today for the user.
    std::string proposedFileName() const;

    // -- Working. Reads the vault and its secrets for a backup at `path`; nothing (and `error`
    // set, back on the password step) when the keyring cannot be read or the password does not
    // qualify.
    std::optional<Job> start(const std::string& path);
    // The sealed file of attempt `run` (empty when sealing failed): written at the chosen path
    // (owner-only, atomically), then done; on failure back on the password step with the reason.
    // Dropped, writing nothing, when the attempt was cancelled.
    void sealed(std::uint64_t run, const std::string& bytes);
    // Stops the attempt under way: nothing is written, and the password step comes back with the
    // passwords kept.
    void cancel();

    // -- Done. "Backed up 27 organizations and 312 services with 298 secrets.", and how many
    // secrets were missing from the keyring when some were.
    const std::string& doneText() const { return m_doneText; }
    // Each secret the backup lacks, in the order of the services ("the password of "GitHub"").
    const std::vector<std::string>& missingSecrets() const { return m_missingSecrets; }
    const std::string& savedPath() const { return m_path; }

    // -- Footer.
    std::string mainButtonTitle() const;
    bool mainButtonEnabled() const;

private:
    DataStore& m_store;
    AuthManager& m_auth;
    const UserCalendar& m_calendar;
    Step m_step = Step::authenticate;
    bool m_isAuthenticating = false;
    std::optional<std::string> m_error;
    std::uint64_t m_run = 0;
    std::string m_path;
    std::string m_doneText;
    std::vector<std::string> m_missingSecrets;
    // Cleared when the flow goes away, so that an authentication reply arriving later is dropped.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace vorlane
