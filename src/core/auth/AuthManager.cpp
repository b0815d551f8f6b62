// SPDX-License-Identifier: GPL-3.0-or-later
#include "AuthManager.h"

#include "util/Timers.h"

#include <utility>

namespace vorlane {

AuthManager& AuthManager::shared() {
    static AuthManager instance;
    return instance;
}

void AuthManager::connectPlatform(Authenticator& authenticator, Timers& mainLoop) {
    m_authenticator = &authenticator;
    m_mainLoop = &mainLoop;
}

void AuthManager::disconnectPlatform() {
    m_authenticator = nullptr;
    m_mainLoop = nullptr;
}

void AuthManager::setAuthenticated(bool authenticated) {
    if (authenticated == m_isAuthenticated) {
        return;
    }
    m_isAuthenticated = authenticated;
    isAuthenticatedChanged.emit(m_isAuthenticated);
}

void AuthManager::setLastAuthDate(std::optional<Instant> date) {
    if (date == m_lastAuthDate) {
        return;
    }
    m_lastAuthDate = date;
    lastAuthDateChanged.emit(m_lastAuthDate);
}

void AuthManager::lock() {
    setAuthenticated(false);
    setLastAuthDate(std::nullopt);
    locked.emit();
}

void AuthManager::authenticateForSensitiveAction(const std::string& reason,
                                                 std::function<void(bool)> reply) {
    if (m_authenticator == nullptr) {
        // Nothing can vouch for the user: refuse rather than reveal.
        reply(false);
        return;
    }
    // The reply may arrive on any thread; callers update their screens from it, so it is always
    // delivered on the main loop. A fresh request every time: nothing from an earlier answer is
    // kept.
    Timers* mainLoop = m_mainLoop;
    m_authenticator->evaluate(AuthenticationRequest{reason, "Use Password", "Cancel"},
                              [mainLoop, reply = std::move(reply)](AuthenticationOutcome outcome) {
                                  const bool authenticated =
                                      outcome == AuthenticationOutcome::authenticated;
                                  mainLoop->post([reply, authenticated] { reply(authenticated); });
                              });
}

BiometricsState AuthManager::biometrics() const {
    return m_authenticator != nullptr ? m_authenticator->biometrics() : BiometricsState{};
}

bool AuthManager::biometricsAvailable() const {
    return biometrics().canEvaluate;
}

std::string AuthManager::biometryName() const {
    switch (biometrics().type) {
    case BiometryType::fingerprint:
        return "Fingerprint";
    case BiometryType::none:
        break;
    }
    return "Biometrics";
}

} // namespace vorlane
