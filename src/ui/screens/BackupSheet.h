// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "components/BackgroundJob.h"
#include "components/SheetFrame.h"
#include "screens/BackupFlow.h"

#include <QDialog>

#include <functional>
#include <optional>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QStackedWidget;

namespace vorlane {

struct AppContext;
class RunProgress;
class StepIndicator;
class StrengthMeter;

// File → Back Up Vault…: draws a BackupFlow step by step. The sealing (a key derivation of a
// moment and 64 MiB) runs on a worker thread while a busy bar and Cancel stay live; a cancelled
// backup writes nothing. Escape while it works cancels it; otherwise it closes the sheet.
class BackupSheet : public QDialog {
    Q_OBJECT

public:
    // Asks where to save, proposing a path; nothing when the user cancels.
    using FileChooser = std::function<std::optional<QString>(const QString& proposedPath)>;

    explicit BackupSheet(AppContext& context, QWidget* parent = nullptr);

    const BackupFlow& flow() const { return m_flow; }
    // Replaces the save dialog (the tests answer it as a person would).
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }

public Q_SLOTS:
    void reject() override;

private:
    QWidget* createAuthenticateStep();
    QWidget* createPasswordStep();
    QWidget* createSaveStep();
    void runMainAction();
    void backUp();
    void refresh();

    AppContext& m_context;
    BackupFlow m_flow;
    FileChooser m_chooseFile;
    SheetFrame m_frame;
    StepIndicator* m_indicator;
    QStackedWidget* m_steps;
    QLabel* m_authenticationError = nullptr;
    QLineEdit* m_password = nullptr;
    StrengthMeter* m_meter = nullptr;
    QLabel* m_strength = nullptr;
    QLabel* m_passwordProblem = nullptr;
    QLineEdit* m_confirmation = nullptr;
    QLabel* m_confirmationProblem = nullptr;
    QLabel* m_saveError = nullptr;
    RunProgress* m_run = nullptr;
    QLabel* m_savedPath = nullptr;
    QPlainTextEdit* m_missing = nullptr;
    // Last, so that it is destroyed first: it waits for the worker while the sheet still exists.
    BackgroundJob m_job{*this};
};

} // namespace vorlane
