// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "SecretBuffer.h"
#include "auth/Authenticator.h"

#include <functional>
#include <memory>
#include <string_view>

namespace vorlane {

// What the PAM conversation of one evaluation shows the user, implemented by the interface (a
// dialog). One object per evaluation; every call arrives on the main thread.
class AuthenticationPrompt {
public:
    using Answer = std::function<void(SecretBuffer)>;

    virtual ~AuthenticationPrompt() = default;

    // PAM needs something typed. `text` is PAM's own prompt ("Password: "); `echo` says whether
    // the entry may be shown as typed. `answer` is called at most once, on the main thread, with
    // the entry; a prompt that is cancelled instead never calls it.
    virtual void ask(std::string_view text, bool echo, Answer answer) = 0;
    // A message from PAM that needs no answer: a fingerprint request, a failure or lock-out
    // notice. While such a message is up and nothing has been asked yet, PAM is busy on its own,
    // typically waiting for a finger on the reader.
    virtual void showMessage(std::string_view text, bool isError) = 0;
    // The conversation is over: take everything off the screen. Nothing is called afterwards.
    virtual void close() = 0;
};

// Makes the prompt for one evaluation. `cancelled` is to be called (on the main thread, at most
// once) when the user gives up; it ends the conversation. The prompt shows nothing until it is
// first asked something or given a message.
using AuthenticationPromptFactory = std::function<std::unique_ptr<AuthenticationPrompt>(
    const AuthenticationRequest& request, std::function<void()> cancelled)>;

} // namespace vorlane
