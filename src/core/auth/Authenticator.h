// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

namespace vorlane {

// What the user is asked, in the system's own words around it.
struct AuthenticationRequest {
    std::string reason;        // why the program asks, shown above the prompt
    std::string fallbackTitle; // the button that turns from biometrics to the password
    std::string cancelTitle;   // the button that gives up
};

// How one evaluation ended. Only `authenticated` lets a sensitive action go ahead.
enum class AuthenticationOutcome {
    authenticated,
    cancelled,   // the user closed the prompt
    failed,      // wrong password or finger, account refused or locked out
    unavailable, // the system could not ask at all (no such user, broken configuration, ...)
};

enum class BiometryType {
    none,
    fingerprint,
};

struct BiometricsState {
    bool canEvaluate = false; // a biometric method is set up for this user and usable now
    BiometryType type = BiometryType::none; // what the machine has, even when nothing is enrolled
};

// Port: the operating system's local user authentication. Implementations own every prompt they
// show; a fresh conversation is started for every evaluation and never reused.
class Authenticator {
public:
    using Reply = std::function<void(AuthenticationOutcome)>;

    virtual ~Authenticator() = default;

    // Asks the user to prove presence (biometrics when set up, the account password otherwise).
    // Returns at once; `reply` is called exactly once, possibly on another thread. Called on the
    // main thread.
    virtual void evaluate(const AuthenticationRequest& request, Reply reply) = 0;
    // Asks the system which biometric method there is; may block for a moment, never longer.
    virtual BiometricsState biometrics() = 0;
};

} // namespace vorlane
