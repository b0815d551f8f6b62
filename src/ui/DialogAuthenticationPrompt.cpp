// SPDX-License-Identifier: GPL-3.0-or-later
#include "DialogAuthenticationPrompt.h"

#include "QtText.h"

#include <QApplication>

#include <utility>

namespace vorlane {

DialogAuthenticationPrompt::DialogAuthenticationPrompt(AuthenticationRequest request,
                                                       std::function<void()> cancelled)
    : m_request(std::move(request))
    , m_cancelled(std::move(cancelled)) {}

DialogAuthenticationPrompt::~DialogAuthenticationPrompt() {
    close();
}

AuthenticationPromptFactory DialogAuthenticationPrompt::factory() {
    return [](const AuthenticationRequest& request, std::function<void()> cancelled) {
        return std::make_unique<DialogAuthenticationPrompt>(request, std::move(cancelled));
    };
}

void DialogAuthenticationPrompt::ask(std::string_view text, bool echo, Answer answer) {
    m_answer = std::move(answer);
    dialog().ask(toQString(text), echo);
}

void DialogAuthenticationPrompt::showMessage(std::string_view text, bool isError) {
    dialog().showMessage(toQString(text), isError);
}

void DialogAuthenticationPrompt::close() {
    if (m_dialog) {
        // Only our own connections: the lambdas reach this prompt, which may be gone before the
        // deferred delete. Others stay, above all Qt's accessibility cache on destroyed(), or a
        // later dialog at the same address would inherit this one's dead accessible interface.
        QObject::disconnect(m_entryConfirmed);
        QObject::disconnect(m_rejected);
        m_dialog->hide();
        m_dialog->deleteLater();
    }
    m_dialog = nullptr;
    m_answer = nullptr;
}

PasswordPromptDialog& DialogAuthenticationPrompt::dialog() {
    if (!m_dialog) {
        m_dialog = new PasswordPromptDialog(
            toQString(m_request.reason), toQString(m_request.fallbackTitle),
            toQString(m_request.cancelTitle), QApplication::activeWindow());
        m_entryConfirmed =
            QObject::connect(m_dialog, &PasswordPromptDialog::entryConfirmed, m_dialog, [this] {
                if (m_answer) {
                    std::exchange(m_answer, nullptr)(m_dialog->takeEntry());
                }
            });
        m_rejected = QObject::connect(m_dialog, &QDialog::rejected, m_dialog, [this] {
            if (m_cancelled) {
                std::exchange(m_cancelled, nullptr)();
            }
        });
        m_dialog->show();
    }
    return *m_dialog;
}

} // namespace vorlane
