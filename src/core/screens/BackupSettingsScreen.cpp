// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/BackupSettingsScreen.h"

#include "backup/AutomaticBackup.h"
#include "backup/BackupPassword.h"
#include "util/DateText.h"

namespace vorlane {

BackupSettingsScreen::BackupSettingsScreen(AutomaticBackup& backups, const UserCalendar& calendar)
    : m_backups(backups)
    , m_calendar(calendar) {}

bool BackupSettingsScreen::backsUpAutomatically() const {
    return m_backups.settings().enabled;
}

void BackupSettingsScreen::setBacksUpAutomatically(bool on) {
    AutomaticBackupSettings settings = m_backups.settings();
    settings.enabled = on;
    m_backups.setSettings(settings);
}

std::optional<std::string> BackupSettingsScreen::missingText() const {
    const AutomaticBackupSettings settings = m_backups.settings();
    if (!settings.enabled) {
        return std::nullopt;
    }
    const bool folder = !settings.folder.empty();
    const bool password = m_backups.hasPassword();
    if (folder && password) {
        return std::nullopt;
    }
    const char* what = !folder && !password ? "Choose a folder and set a password"
                       : !folder            ? "Choose a folder"
                                            : "Set a password";
    return std::string(what) + " to start backing up.";
}

std::string BackupSettingsScreen::folder() const {
    return m_backups.settings().folder;
}

std::string BackupSettingsScreen::folderText() const {
    const std::string chosen = folder();
    return chosen.empty() ? "No folder chosen" : chosen;
}

void BackupSettingsScreen::setFolder(const std::string& path) {
    if (path.empty()) {
        return;
    }
    AutomaticBackupSettings settings = m_backups.settings();
    settings.folder = path;
    m_backups.setSettings(settings);
}

int BackupSettingsScreen::keepCount() const {
    return m_backups.settings().keepCount;
}

void BackupSettingsScreen::setKeepCount(int count) {
    AutomaticBackupSettings settings = m_backups.settings();
    settings.keepCount = AutomaticBackupSettings::clampedKeepCount(count);
    m_backups.setSettings(settings);
}

int BackupSettingsScreen::minimumKeepCount() {
    return AutomaticBackupSettings::minimumKeepCount;
}

int BackupSettingsScreen::maximumKeepCount() {
    return AutomaticBackupSettings::maximumKeepCount;
}

std::string BackupSettingsScreen::passwordText() const {
    return m_backups.hasPassword() ? "Kept in the secret store" : "Not set";
}

std::string BackupSettingsScreen::passwordButtonTitle() const {
    return m_backups.hasPassword() ? "Change Password\xE2\x80\xA6" : "Set Password\xE2\x80\xA6";
}

std::optional<std::string> BackupSettingsScreen::setPassword(std::string_view password,
                                                             std::string_view repeated) {
    if (auto problem = BackupPassword::problem(password, repeated)) {
        return problem;
    }
    if (!m_backups.setPassword(password)) {
        return std::string(passwordRefused);
    }
    return std::nullopt;
}

std::string BackupSettingsScreen::lastBackupText() const {
    if (m_backups.isRunning()) {
        return "Backing up\xE2\x80\xA6";
    }
    const std::optional<LastBackup> last = m_backups.lastBackup();
    if (!last) {
        return "No backup yet";
    }
    return "Last backup: " +
           DateText::format(last->at, DateText::Style::abbreviatedWithTime, m_calendar) +
           " \xE2\x80\x94 " + (last->error ? "Failed: " + *last->error : std::string("Succeeded"));
}

bool BackupSettingsScreen::lastBackupFailed() const {
    const std::optional<LastBackup> last = m_backups.lastBackup();
    return !m_backups.isRunning() && last && last->error;
}

bool BackupSettingsScreen::backUpNowEnabled() const {
    return !m_backups.isRunning() && !m_backups.settings().folder.empty() &&
           m_backups.hasPassword();
}

void BackupSettingsScreen::backUpNow() {
    if (backUpNowEnabled()) {
        m_backups.backUpNow();
    }
}

} // namespace vorlane
