// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/SettingsScreen.h"

#include <QTabWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;

namespace vorlane {

struct AppContext;

// The preferences in three tabs (General, Security, Notifications), 480 × 360, and a fourth,
// Backups, where the program makes automatic backups (AppContext::backups). The same widget is
// the settings window and the content of the settings sheet. Both edit the same keys, so the view
// reads them again whenever it is shown or its window becomes active: a change made in the one is
// there when the person turns to the other. Main thread; the context must outlive the view.
class SettingsView : public QTabWidget {
    Q_OBJECT

public:
    static constexpr QSize fixedSize{480, 360};

    explicit SettingsView(AppContext& context, QWidget* parent = nullptr);

    QComboBox* clipboardPicker() const { return m_clipboard; }
    QComboBox* currencyPicker() const { return m_currency; }
    QComboBox* autoLockPicker() const { return m_autoLock; }
    QComboBox* warningDaysPicker() const { return m_warningDays; }
    QCheckBox* expenseRemindersToggle() const { return m_expenseReminders; }

    // Reads every preference and the authentication texts again.
    void reload();

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* generalTab();
    QWidget* securityTab();
    QWidget* notificationsTab();

    AppContext& m_context;
    SettingsScreen m_screen;
    QComboBox* m_currency = nullptr;
    QComboBox* m_clipboard = nullptr;
    QComboBox* m_autoLock = nullptr;
    QFormLayout* m_autoLockForm = nullptr;
    QLabel* m_biometricsValue = nullptr;
    QLabel* m_authenticationText = nullptr;
    QComboBox* m_warningDays = nullptr;
    QCheckBox* m_expenseReminders = nullptr;
};

} // namespace vorlane
