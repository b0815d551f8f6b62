// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AuthenticationPrompt.h"
#include "PasswordPromptDialog.h"

#include <QMetaObject>
#include <QPointer>

#include <functional>

namespace vorlane {

// Shows one PAM conversation in a PasswordPromptDialog, window-modal over the active window. The
// dialog appears with PAM's first question or message, so a conversation that needs nothing from
// the user shows nothing. Main thread.
class DialogAuthenticationPrompt final : public AuthenticationPrompt {
public:
    DialogAuthenticationPrompt(AuthenticationRequest request, std::function<void()> cancelled);
    ~DialogAuthenticationPrompt() override;

    // The factory PamAuthenticator takes.
    static AuthenticationPromptFactory factory();

    void ask(std::string_view text, bool echo, Answer answer) override;
    void showMessage(std::string_view text, bool isError) override;
    void close() override;

private:
    PasswordPromptDialog& dialog();

    AuthenticationRequest m_request;
    std::function<void()> m_cancelled;
    Answer m_answer;
    QPointer<PasswordPromptDialog> m_dialog; // the parent window may delete it first
    QMetaObject::Connection m_entryConfirmed;
    QMetaObject::Connection m_rejected;
};

} // namespace vorlane
