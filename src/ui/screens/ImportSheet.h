// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "components/SheetFrame.h"
#include "screens/ImportFlow.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;
class QTableView;
class QTimer;

namespace vorlane {

struct AppContext;
class ImportPreviewModel;
class RunProgress;

// The import sheet: draws an ImportFlow step by step. The import runs a few rows per turn of the
// main loop, so the window keeps drawing the progress and Cancel (or Escape) stops it between
// two rows. Closing the sheet while it imports cancels the import first.
class ImportSheet : public QDialog {
    Q_OBJECT

public:
    explicit ImportSheet(AppContext& context, QWidget* parent = nullptr);
    ~ImportSheet() override;

    const ImportFlow& flow() const { return m_flow; }
    // Reads `path` as the file chooser's answer would; the chooser button ends here.
    void chooseFile(const QString& path);

public Q_SLOTS:
    void reject() override;

private:
    QWidget* createChooseStep();
    QWidget* createPreviewStep();
    QWidget* createImportStep();
    void runMainAction();
    void importSome();
    void saveTemplate();
    void showError(const QString& text);
    void refresh();

    AppContext& m_context;
    ImportFlow m_flow;
    SheetFrame m_frame;
    QStackedWidget* m_steps;
    QTimer* m_importTimer;
    QComboBox* m_format = nullptr;
    QLabel* m_path = nullptr;
    QLabel* m_error = nullptr;
    ImportPreviewModel* m_model = nullptr;
    QTableView* m_table = nullptr;
    QLineEdit* m_fallback = nullptr;
    QCheckBox* m_oneOrganization = nullptr;
    QLabel* m_previewSummary = nullptr;
    RunProgress* m_run = nullptr;
    QPlainTextEdit* m_details = nullptr;
    QLabel* m_advice = nullptr;
};

} // namespace vorlane
