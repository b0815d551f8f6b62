// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "components/SheetFrame.h"

#include <QDialog>

class QLabel;
class QLineEdit;

namespace vorlane {

class BackupSettingsScreen;
class StrengthMeter;

// Settings → Backups → "Set Password…": the automatic backups' password typed twice, with the
// strength meter under the first field. Save stores it through the screen, or shows what is wrong
// under the fields and keeps what was typed. Window-modal; the screen must outlive the sheet.
class BackupPasswordSheet : public QDialog {
    Q_OBJECT

public:
    BackupPasswordSheet(BackupSettingsScreen& screen, QWidget* parent = nullptr);

    QLineEdit* passwordField() const { return m_password; }
    QLineEdit* repeatField() const { return m_repeat; }
    QLabel* problemLabel() const { return m_problem; }

private:
    void save();

    BackupSettingsScreen& m_screen;
    SheetFrame m_frame;
    QLineEdit* m_password;
    QLineEdit* m_repeat;
    StrengthMeter* m_meter;
    QLabel* m_problem;
};

} // namespace vorlane
