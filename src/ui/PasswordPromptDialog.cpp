// SPDX-License-Identifier: GPL-3.0-or-later
#include "PasswordPromptDialog.h"

#include "components/PlainText.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <QVBoxLayout>

#include <string_view>

namespace vorlane {

PasswordPromptDialog::PasswordPromptDialog(const QString& reason, const QString& fallbackTitle,
                                           const QString& cancelTitle, QWidget* parent)
    : QDialog(parent)
    , m_fallbackTitle(fallbackTitle)
    , m_reason(PlainText::label(reason))
    , m_message(PlainText::label())
    , m_prompt(PlainText::label())
    , m_field(new QLineEdit)
    , m_confirm(new QPushButton) {
    setWindowTitle(QStringLiteral("Vorlane"));
    // Over a main window only that window is blocked; alone, the whole program waits.
    setWindowModality(parent != nullptr ? Qt::WindowModal : Qt::ApplicationModal);

    QFont bold = m_reason->font();
    bold.setBold(true);
    m_reason->setFont(bold);
    m_reason->setWordWrap(true);
    m_message->setWordWrap(true);
    m_message->hide();
    m_field->setEchoMode(QLineEdit::Password);
    m_prompt->setBuddy(m_field);

    auto* buttons = new QDialogButtonBox;
    auto* cancel = buttons->addButton(cancelTitle, QDialogButtonBox::RejectRole);
    cancel->setAutoDefault(false);
    buttons->addButton(m_confirm, QDialogButtonBox::AcceptRole);
    m_confirm->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &PasswordPromptDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PasswordPromptDialog::reject);

    auto* entry = new QFormLayout;
    entry->addRow(m_prompt, m_field);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_reason);
    layout->addWidget(m_message);
    layout->addLayout(entry);
    layout->addWidget(buttons);
    setMinimumWidth(380);

    setState(State::waiting);
}

PasswordPromptDialog::~PasswordPromptDialog() {
    m_field->clear();
}

void PasswordPromptDialog::ask(const QString& prompt, bool echo) {
    m_prompt->setText(prompt.trimmed());
    m_field->setEchoMode(echo ? QLineEdit::Normal : QLineEdit::Password);
    setState(State::question);
    if (m_entryQueued && !m_field->text().isEmpty()) {
        m_entryQueued = false;
        confirm();
    }
}

void PasswordPromptDialog::showMessage(const QString& text, bool isError) {
    m_message->setText(text.trimmed());
    QPalette palette = this->palette();
    if (isError) {
        palette.setColor(QPalette::WindowText, QColor(0xd7, 0x26, 0x1e));
    }
    m_message->setPalette(palette);
    m_message->setVisible(!text.trimmed().isEmpty());
}

SecretBuffer PasswordPromptDialog::takeEntry() {
    QString text = m_field->text();
    // Once the field lets go of it, `text` is the only reference left, so the wipe below
    // overwrites the field's own storage rather than a detached copy.
    m_field->clear();
    QByteArray utf8 = text.toUtf8();
    SecretBuffer entry(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
    SecretBuffer::wipe(utf8.data(), static_cast<std::size_t>(utf8.size()));
    SecretBuffer::wipe(text.data(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
    return entry;
}

void PasswordPromptDialog::accept() {
    switch (m_state) {
    case State::question:
        confirm();
        break;
    case State::waiting:
        // "Use Password": let the user type ahead; the entry goes out when PAM asks for it.
        if (m_field->text().isEmpty()) {
            m_field->setFocus();
        } else {
            m_entryQueued = true;
        }
        break;
    case State::checking:
        break;
    }
}

void PasswordPromptDialog::confirm() {
    setState(State::checking);
    Q_EMIT entryConfirmed();
}

void PasswordPromptDialog::setState(State state) {
    m_state = state;
    m_confirm->setText(state == State::waiting ? m_fallbackTitle : tr("OK"));
    m_confirm->setEnabled(state != State::checking);
    m_field->setEnabled(state != State::checking);
    m_prompt->setVisible(state != State::waiting);
    if (state == State::question) {
        m_field->setFocus();
    }
}

} // namespace vorlane
