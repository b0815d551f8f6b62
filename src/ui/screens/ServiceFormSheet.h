// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ServiceForm.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace vorlane {

struct AppContext;

// The service form sheet, for a new service or the one being edited: draws a ServiceForm, hands
// it every keystroke, shows each field's problem beside it and keeps the save button disabled
// while there is one. Closing it, saved or not, ends the editing. Main thread; the context
// outlives it.
class ServiceFormSheet : public QDialog {
    Q_OBJECT

public:
    explicit ServiceFormSheet(AppContext& context, QWidget* parent = nullptr);
    ~ServiceFormSheet() override;

    const ServiceForm& form() const { return m_form; }
    QPushButton* saveButton() const { return m_save; }

private:
    struct SecretWidgets {
        QLineEdit* edit = nullptr;
        QToolButton* show = nullptr;
        QPushButton* remove = nullptr;
    };
    struct DateWidgets {
        QCheckBox* enabled = nullptr;
        QDateEdit* date = nullptr;
    };

    SecretWidgets& widgets(ServiceForm::SecretKind kind);
    ServiceForm::SecretInput& input(ServiceForm::SecretKind kind);
    QWidget* createSecretRow(ServiceForm::SecretKind kind, const QString& name);
    // Reads a QR code from the clipboard's image, or from an image file the person picks.
    void pasteQRCode(QLineEdit* edit);
    QWidget* createDateRow(std::optional<Instant>& value, DateWidgets& widgets,
                           const QString& name);
    QLineEdit* addLine(QFormLayout* form, const QString& label, std::string& value,
                       QLabel** error = nullptr);
    void refresh();
    void refreshSecret(ServiceForm::SecretKind kind);
    void save();

    AppContext& m_context;
    ServiceForm m_form;
    SecretWidgets m_password;
    SecretWidgets m_apiKey;
    SecretWidgets m_oneTimeCode;
    DateWidgets m_purchase;
    DateWidgets m_renewal;
    DateWidgets m_expiration;
    QLabel* m_organizationError = nullptr;
    QLabel* m_titleError = nullptr;
    QLabel* m_portError = nullptr;
    QLabel* m_monthlyError = nullptr;
    QLabel* m_yearlyError = nullptr;
    QLabel* m_oneTimeCodeError = nullptr;
    QLabel* m_saveError = nullptr;
    QPushButton* m_save = nullptr;
};

} // namespace vorlane
