// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/OrganizationForm.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace vorlane {

struct AppContext;

// The "New Organization" sheet (520 × 620): the logo with its preview, "Choose Logo..." and
// "Remove"; Identity, Contact and Details sections; "Cancel" (Escape) and the default button
// (Return), disabled while the name is blank. Every field writes straight into the form model;
// the sheet accepts after saving and rejects on cancel, which leaves an edit pending on purpose.
class OrganizationFormSheet : public QDialog {
    Q_OBJECT

public:
    explicit OrganizationFormSheet(AppContext& context, QWidget* parent = nullptr);

    const OrganizationForm& form() const { return m_form; }
    QPushButton* saveButton() const { return m_save; }
    QLineEdit* nameField() const { return m_name; }
    QLineEdit* tagsField() const { return m_tags; }

    // What "Choose Logo..." does once a file is picked: its pixel size is read from the header
    // alone (nothing decoded) for the form's limits. An unreadable file changes nothing; one
    // beyond the limits shows why under the logo.
    void chooseLogo(const QString& path);
    QLabel* logoErrorLabel() const { return m_logoError; }

private:
    void pickLogo();
    void updateLogo();
    void save();

    OrganizationForm m_form;
    QLabel* m_preview;
    QPushButton* m_removeLogo;
    QLabel* m_logoError;
    QLineEdit* m_name;
    QLineEdit* m_tags;
    QPushButton* m_save;
};

} // namespace vorlane
