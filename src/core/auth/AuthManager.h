// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "auth/Authenticator.h"
#include "util/Instant.h"
#include "util/Signal.h"

#include <functional>
#include <optional>
#include <string>

namespace vorlane {

class Timers;

// The one place that asks the user to prove presence before a secret is revealed or exported,
// and the small lock state that "Lock Vault" resets. Nothing in the program sets
// `isAuthenticated` to true or reads it to decide anything: protection is per sensitive action,
// and every action asks again. Main thread only.
class AuthManager {
public:
    static constexpr double defaultAuthTimeout = 300.0;

    // The program's single instance, created on first use; the application connects it to the
    // platform at start.
    static AuthManager& shared();

    AuthManager() = default;
    AuthManager(const AuthManager&) = delete;
    AuthManager& operator=(const AuthManager&) = delete;

    // Where evaluations go and how replies come back to the main loop. Neither is owned; both
    // must outlive every request still waiting for its reply. Until this is called every request
    // answers false at once, inside the call.
    void connectPlatform(Authenticator& authenticator, Timers& mainLoop);
    // Forgets them again, before they are destroyed at shutdown; later requests answer false.
    void disconnectPlatform();

    bool isAuthenticated() const { return m_isAuthenticated; }
    std::optional<Instant> lastAuthDate() const { return m_lastAuthDate; }
    // The intended idle timeout in seconds; kept but deliberately never acted on.
    double authTimeout() const { return m_authTimeout; }

    // Observers are told only about real changes.
    void setAuthenticated(bool authenticated);
    void setLastAuthDate(std::optional<Instant> date);

    // "Lock Vault": drops the lock state and tells `locked`, so that screens holding anything read
    // from the keyring drop it.
    void lock();

    // Asks the user, every time, with `reason` shown in the prompt. `reply` runs exactly once, on
    // the main loop (posted, never inside this call once a platform is connected), with true only
    // when the user authenticated; any failure or cancellation is false. Leaves the lock state
    // alone.
    void authenticateForSensitiveAction(const std::string& reason, std::function<void(bool)> reply);

    // Whether a biometric method can be used now, and its name ("Fingerprint"; "Biometrics" when
    // the machine has none). Asks the system each time.
    bool biometricsAvailable() const;
    std::string biometryName() const;

    Signal<bool> isAuthenticatedChanged;
    Signal<std::optional<Instant>> lastAuthDateChanged;
    Signal<> locked;

private:
    BiometricsState biometrics() const;

    bool m_isAuthenticated = false;
    std::optional<Instant> m_lastAuthDate;
    double m_authTimeout = defaultAuthTimeout;
    Authenticator* m_authenticator = nullptr;
    Timers* m_mainLoop = nullptr;
};

} // namespace vorlane
