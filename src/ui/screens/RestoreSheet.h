// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "components/BackgroundJob.h"
#include "components/SheetFrame.h"
#include "screens/RestoreFlow.h"

#include <QDialog>

class QGridLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QStackedWidget;
class QTimer;

namespace vorlane {

struct AppContext;
class RunProgress;
class StepIndicator;

// File → Restore from Backup…: draws a RestoreFlow step by step. The backup is opened (a key
// derivation of a moment) on a worker thread; the restore itself runs a few secrets per turn of
// the main loop, since the store and the keyring belong to it, with a progress bar. Cancel or
// Escape stops the opening or the restore (which then undoes what it wrote); otherwise they
// close the sheet, and closing it mid-restore undoes the restore too.
class RestoreSheet : public QDialog {
    Q_OBJECT

public:
    explicit RestoreSheet(AppContext& context, QWidget* parent = nullptr);

    const RestoreFlow& flow() const { return m_flow; }
    // Reads `path` as the open dialog's answer would; the main button ends here.
    void chooseFile(const QString& path);

public Q_SLOTS:
    void reject() override;

private:
    QWidget* createFileStep();
    QWidget* createPasswordStep();
    QWidget* createSummaryStep();
    QWidget* createRestoreStep();
    void runMainAction();
    void unlock();
    void restoreSome();
    void fillSummary();
    void refresh();

    RestoreFlow m_flow;
    SheetFrame m_frame;
    StepIndicator* m_indicator;
    QStackedWidget* m_steps;
    QTimer* m_restoreTimer;
    QLabel* m_path = nullptr;
    QLabel* m_fileError = nullptr;
    QLineEdit* m_password = nullptr;
    QLabel* m_passwordError = nullptr;
    QLabel* m_openingText = nullptr;
    QProgressBar* m_opening = nullptr;
    QGridLayout* m_contents = nullptr;
    QLabel* m_plan = nullptr;
    RunProgress* m_run = nullptr;
    // Last, so that it is destroyed first: it waits for the worker while the sheet still exists.
    BackgroundJob m_job{*this};
};

} // namespace vorlane
