// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

class AutomaticBackup;
class UserCalendar;

// Settings → Backups: automatic backups switched on or off, their folder, how many the folder
// keeps, their password (set in a small sheet, typed twice), the last backup's time and result,
// and "Back Up Now". Every change goes straight to AutomaticBackup, which keeps it. Main thread;
// the backups and calendar must outlive the screen.
class BackupSettingsScreen {
public:
    static constexpr std::string_view tabTitle = "Backups";
    static constexpr std::string_view tabIcon = "externaldrive";
    static constexpr std::string_view automaticLabel = "Back up automatically";
    static constexpr std::string_view folderLabel = "Folder";
    static constexpr std::string_view chooseFolderTitle = "Choose\xE2\x80\xA6";
    static constexpr std::string_view chooseFolderDialogTitle = "Choose the Backup Folder";
    static constexpr std::string_view keepLabel = "Backups to keep";
    static constexpr std::string_view passwordLabel = "Password";
    static constexpr std::string_view backUpNowTitle = "Back Up Now";
    static constexpr std::string_view explanation =
        "Once a day, when the vault has changed, Vorlane writes an encrypted backup with every "
        "password into this folder \xE2\x80\x94 for example one that Syncthing or Nextcloud keeps "
        "in step across your machines. The oldest backups beyond the number kept are removed.";

    // The password sheet.
    static constexpr std::string_view passwordSheetTitle = "Backup Password";
    static constexpr std::string_view passwordSheetText =
        "Automatic backups are sealed with this password. It is kept in your secret store; "
        "to restore a backup on another machine you type it, so keep it somewhere safe too.";
    static constexpr std::string_view newPasswordLabel = "New password";
    static constexpr std::string_view repeatPasswordLabel = "Repeat password";
    static constexpr std::string_view savePasswordTitle = "Save";
    static constexpr std::string_view passwordRefused =
        "The secret store did not take the password. Unlock it and try again.";

    BackupSettingsScreen(AutomaticBackup& backups, const UserCalendar& calendar);

    bool backsUpAutomatically() const;
    void setBacksUpAutomatically(bool on);
    // While switched on without a folder or a password: what is missing, as a hint under the box.
    std::optional<std::string> missingText() const;

    // The chosen folder; empty while none is.
    std::string folder() const;
    // The chosen folder, or "No folder chosen".
    std::string folderText() const;
    // An empty path (a dialog cancelled) changes nothing.
    void setFolder(const std::string& path);

    int keepCount() const;
    void setKeepCount(int count);
    static int minimumKeepCount();
    static int maximumKeepCount();

    // "Kept in the secret store" or "Not set".
    std::string passwordText() const;
    // "Set Password…", or "Change Password…" once one is kept.
    std::string passwordButtonTitle() const;
    // Stores the password typed twice. Nothing when it was stored; otherwise what is wrong with
    // it (BackupPassword's texts) or `passwordRefused`, and nothing changed.
    std::optional<std::string> setPassword(std::string_view password, std::string_view repeated);

    // "Backing up…", "No backup yet", or "Last backup: Mar 10, 2026, 12:00 PM — Succeeded" /
    // "… — Failed: <reason>".
    std::string lastBackupText() const;
    bool lastBackupFailed() const;

    // A folder and a password, and no backup running.
    bool backUpNowEnabled() const;
    void backUpNow();

private:
    AutomaticBackup& m_backups;
    const UserCalendar& m_calendar;
};

} // namespace vorlane
