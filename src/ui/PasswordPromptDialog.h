// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "SecretBuffer.h"

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QPushButton;

namespace vorlane {

// The vault lock's own prompt: why the program asks, what PAM says and asks, a field for the
// answer, "Cancel" (also Escape) and a default button. It starts out waiting: until PAM asks for
// something, the system is busy on its own (typically waiting for a finger on the reader), and
// the default button carries the fallback title ("Use Password"); whatever is typed meanwhile is
// handed over as soon as PAM asks. Confirming does not close the dialog: the conversation decides
// when it is over. Main thread.
class PasswordPromptDialog final : public QDialog {
    Q_OBJECT

public:
    PasswordPromptDialog(const QString& reason, const QString& fallbackTitle,
                         const QString& cancelTitle, QWidget* parent = nullptr);
    ~PasswordPromptDialog() override;

    // PAM's question; `echo` shows the entry as typed (a user name, a one-time code).
    void ask(const QString& prompt, bool echo);
    // A message from PAM that needs no answer; errors stand out.
    void showMessage(const QString& text, bool isError);

    // What was typed, moved out of the field: the field is cleared and the text copies made on
    // the way are wiped.
    SecretBuffer takeEntry();

    void accept() override;

Q_SIGNALS:
    // The user confirmed an answer to the open question; collect it with takeEntry().
    void entryConfirmed();

private:
    enum class State {
        waiting,  // nothing asked yet: PAM is busy on its own
        question, // PAM waits for the field's content
        checking, // answered; PAM is checking it
    };

    void setState(State state);
    void confirm();

    QString m_fallbackTitle;
    State m_state = State::waiting;
    bool m_entryQueued = false; // confirmed while waiting: hand over at the next question
    QLabel* m_reason;
    QLabel* m_message;
    QLabel* m_prompt;
    QLineEdit* m_field;
    QPushButton* m_confirm;
};

} // namespace vorlane
