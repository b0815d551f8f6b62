// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AuthenticationPrompt.h"
#include "FprintdProbe.h"
#include "auth/Authenticator.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class Timers;

// Proves the presence of the user who runs the program through PAM, service "vorlane" (installed
// as /etc/pam.d/vorlane; without it PAM uses its "other" service): pam_authenticate, then
// pam_acct_mgmt, so that an expired or locked account is refused too. Each evaluation is a new
// PAM transaction on a worker thread of its own, because PAM modules block (the failure delay, a
// fingerprint reader); the conversation's questions and messages are handed to a prompt on the
// main loop, and the worker waits for the answer. A typed answer is copied once into the memory
// PAM asks for and wiped from our buffer at once; nothing is logged.
//
// Construct and call on the main thread. `mainLoop` must outlive this object. Destroying it
// cancels every conversation still running: their prompts close and their replies say cancelled.
class PamAuthenticator final : public Authenticator {
public:
    static constexpr std::string_view serviceName = "vorlane";

    PamAuthenticator(Timers& mainLoop, AuthenticationPromptFactory promptFactory,
                     FprintdProbe biometricsProbe = FprintdProbe());
    ~PamAuthenticator() override;

    PamAuthenticator(const PamAuthenticator&) = delete;
    PamAuthenticator& operator=(const PamAuthenticator&) = delete;

    // The reply comes on the main loop.
    void evaluate(const AuthenticationRequest& request, Reply reply) override;
    BiometricsState biometrics() override;

    // The login name PAM is asked about; empty when the account cannot be looked up, in which
    // case every evaluation is unavailable.
    const std::string& userName() const { return m_userName; }

private:
    class Conversation;

    Timers& m_mainLoop;
    AuthenticationPromptFactory m_promptFactory;
    FprintdProbe m_biometricsProbe;
    std::string m_userName;
    std::vector<std::weak_ptr<Conversation>> m_conversations;
};

} // namespace vorlane
