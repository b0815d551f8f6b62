// SPDX-License-Identifier: GPL-3.0-or-later
#include "TerminalAuthentication.h"

#include "AuthenticationPrompt.h"
#include "PamAuthenticator.h"
#include "QtTimers.h"
#include "TerminalPrompt.h"

#include <QEventLoop>

#include <optional>
#include <ostream>

namespace vorlane {

namespace {

class TerminalAuthenticationPrompt final : public AuthenticationPrompt {
public:
    TerminalAuthenticationPrompt(std::ostream& err, std::function<void()> cancelled)
        : m_err(err)
        , m_cancelled(std::move(cancelled)) {}

    void ask(std::string_view text, bool /*echo*/, Answer answer) override {
        // Also an echoing question is read without echo: on a shared screen a typed answer to
        // PAM is nobody else's business either.
        std::optional<std::string> line = TerminalPrompt::readSecret(text);
        if (!line) {
            m_err << "vorlane-cli: no terminal to ask for authentication on\n";
            m_cancelled();
            return;
        }
        answer(SecretBuffer(*line));
        std::fill(line->begin(), line->end(), '\0');
    }

    void showMessage(std::string_view text, bool /*isError*/) override { m_err << text << "\n"; }

    void close() override {}

private:
    std::ostream& m_err;
    std::function<void()> m_cancelled;
};

} // namespace

bool TerminalAuthentication::authenticate(const std::string& reason, std::ostream& err) {
    QtTimers mainLoop;
    PamAuthenticator authenticator(
        mainLoop, [&err](const AuthenticationRequest&, std::function<void()> cancelled) {
            return std::make_unique<TerminalAuthenticationPrompt>(err, std::move(cancelled));
        });
    err << reason << "\n";
    std::optional<AuthenticationOutcome> outcome;
    QEventLoop loop;
    authenticator.evaluate({reason, "Use Password", "Cancel"},
                           [&outcome, &loop](AuthenticationOutcome result) {
                               outcome = result;
                               loop.quit();
                           });
    if (!outcome) {
        loop.exec();
    }
    if (outcome != AuthenticationOutcome::authenticated) {
        err << "vorlane-cli: authentication failed\n";
        return false;
    }
    return true;
}

} // namespace vorlane
