// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/BackupSettingsScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

#include <functional>
#include <optional>

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace vorlane {

class AutomaticBackup;
class UserCalendar;

// The Backups tab of Settings: draws a BackupSettingsScreen and forwards what the person does.
// Redrawn whenever the automatic backups change (a setting, the password, a backup starting or
// ending), so the last backup's line follows a backup made while the tab is open. Main thread;
// the backups and calendar must outlive the section.
class BackupSettingsSection : public QWidget {
    Q_OBJECT

public:
    // Asks for a folder, starting at `current`; nothing when the person cancels.
    using FolderChooser = std::function<std::optional<QString>(const QString& current)>;

    BackupSettingsSection(AutomaticBackup& backups, const UserCalendar& calendar,
                          QWidget* parent = nullptr);

    // Replaces the folder dialog (the tests answer it as a person would).
    void setFolderChooser(FolderChooser chooser) { m_chooseFolder = std::move(chooser); }

    QCheckBox* automaticToggle() const { return m_automatic; }
    QPushButton* chooseFolderButton() const { return m_chooseFolderButton; }
    QSpinBox* keepCountBox() const { return m_keepCount; }
    QPushButton* passwordButton() const { return m_passwordButton; }
    QLabel* lastBackupLabel() const { return m_lastBackup; }
    QPushButton* backUpNowButton() const { return m_backUpNow; }

    // Shows what is stored now.
    void reload();

private:
    void chooseFolder();
    void askPassword();

    BackupSettingsScreen m_screen;
    FolderChooser m_chooseFolder;
    QCheckBox* m_automatic;
    QLabel* m_missing;
    QLabel* m_folder;
    QPushButton* m_chooseFolderButton;
    QSpinBox* m_keepCount;
    QLabel* m_password;
    QPushButton* m_passwordButton;
    QLabel* m_lastBackup;
    QPushButton* m_backUpNow;
    ScopedConnection m_backupsChanged;
};

} // namespace vorlane
