// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ReminderSettingsScreen.h"

#include <QGroupBox>

#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;

namespace vorlane {

struct AppContext;

// The "Remind me" section of Settings → Notifications: a check box per lead time, when in the day
// they come, whether services that renew automatically get them, and whether a calendar file beside
// the vault follows the renewals. Each change is stored at
// once and announced as a change of the vault, which rebuilds the reminder schedule. Main thread;
// the context must outlive the section.
class ReminderSettingsSection : public QGroupBox {
    Q_OBJECT

public:
    explicit ReminderSettingsSection(AppContext& context, QWidget* parent = nullptr);

    QCheckBox* leadTimeBox(int daysBefore) const;
    QComboBox* remindAtPicker() const { return m_remindAt; }
    QCheckBox* autoRenewingToggle() const { return m_autoRenewing; }
    QCheckBox* calendarFileToggle() const { return m_calendarFile; }

    // Shows what is stored now.
    void reload();

private:
    void changed();

    AppContext& m_context;
    ReminderSettingsScreen m_screen;
    std::vector<std::pair<int, QCheckBox*>> m_leadTimes;
    QComboBox* m_remindAt = nullptr;
    QCheckBox* m_autoRenewing = nullptr;
    QCheckBox* m_calendarFile = nullptr;
    QLabel* m_calendarHelp = nullptr; // shown while the file is kept
};

} // namespace vorlane
