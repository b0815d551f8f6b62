// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "components/SheetFrame.h"
#include "screens/SmartPasteFlow.h"

#include <QDialog>

#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QStackedWidget;
class QWidget;

namespace vorlane {

struct AppContext;

// The smart-paste sheet: draws a SmartPasteFlow step by step and hands it what the user types.
// Long pastes are parsed on a worker thread so that the window never freezes; the result is
// taken only if the text is still the one that was parsed.
class SmartPasteSheet : public QDialog {
    Q_OBJECT

public:
    // Preselects `organization` (may be null).
    SmartPasteSheet(AppContext& context, Organization* organization, QWidget* parent = nullptr);

    const SmartPasteFlow& flow() const { return m_flow; }

private:
    QWidget* createPasteStep();
    QWidget* createReviewStep();
    QWidget* createOneTimeCodeField();
    QWidget* createDoneStep();
    void pasteFromClipboard();
    void runMainAction();
    void startParse();
    void fillReview();
    void fillSecretLines();
    void refresh();

    AppContext& m_context;
    SmartPasteFlow m_flow;
    bool m_parsing = false;

    SheetFrame m_frame;
    QStackedWidget* m_steps;
    QPlainTextEdit* m_editor = nullptr;
    QLabel* m_characterCount = nullptr;
    QProgressBar* m_busy = nullptr;
    QComboBox* m_organization = nullptr;
    QComboBox* m_serviceType = nullptr;
    std::vector<QLineEdit*> m_fieldEdits; // in SmartPasteFlow::fields() order, but Notes
    std::vector<QLabel*> m_fieldChecks;   // likewise, Notes included
    QPlainTextEdit* m_notes = nullptr;
    QLineEdit* m_oneTimeCode = nullptr;
    QLabel* m_oneTimeCodeCheck = nullptr;
    QLabel* m_oneTimeCodeError = nullptr;
    QWidget* m_secretLines = nullptr;
    std::vector<std::string> m_shownSecretLines;
    QLabel* m_detectedDateLabel = nullptr;
    QLabel* m_detectedDate = nullptr;
    QWidget* m_detectedTypes = nullptr;
};

} // namespace vorlane
