// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "components/SheetFrame.h"
#include "screens/ShareFlow.h"

#include <QDialog>

#include <functional>
#include <optional>

class QCheckBox;
class QDateEdit;
class QFrame;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QStackedWidget;

namespace vorlane {

struct AppContext;
class StepIndicator;
class StrengthMeter;

// The share sheet: draws a ShareFlow step by step. The bundle is written through PrivateFile:
// owner-only, and a failed write leaves no partial file behind.
class ShareSheet : public QDialog {
    Q_OBJECT

public:
    using FileChooser = std::function<std::optional<QString>(const QString& proposedName)>;

    ShareSheet(AppContext& context, Organization& organization,
               std::vector<ServiceRecord*> services, QWidget* parent = nullptr);

    const ShareFlow& flow() const { return m_flow; }
    // Replaces the save dialog (the tests answer it as a person would).
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }

private:
    QWidget* createSelectStep();
    QWidget* createConfigureStep();
    QWidget* createConfirmStep();
    std::optional<QString> askForFile(const QString& proposedName);
    void runMainAction();
    void fillSummary();
    void refresh();

    AppContext& m_context;
    ShareFlow m_flow;
    FileChooser m_chooseFile;

    SheetFrame m_frame;
    StepIndicator* m_indicator;
    QStackedWidget* m_steps;
    QListWidget* m_serviceList = nullptr;
    QLabel* m_selectedCount = nullptr;
    QLabel* m_secretsCaption = nullptr;
    QCheckBox* m_redactPasswords = nullptr;
    QCheckBox* m_redactAPIKeys = nullptr;
    QDateEdit* m_expires = nullptr;
    QLabel* m_expiresLabel = nullptr;
    QLineEdit* m_password = nullptr;
    QLabel* m_passwordLabel = nullptr;
    StrengthMeter* m_passwordMeter = nullptr;
    QLabel* m_passwordStrength = nullptr;
    QLabel* m_passwordWarning = nullptr;
    QGridLayout* m_summary = nullptr;
    QFrame* m_secretsNotice = nullptr;
    QFrame* m_errorNotice = nullptr;
    QLabel* m_errorText = nullptr;
};

} // namespace vorlane
