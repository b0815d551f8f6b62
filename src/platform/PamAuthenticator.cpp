// SPDX-License-Identifier: GPL-3.0-or-later
#include "PamAuthenticator.h"

#include "util/Timers.h"

#include <pwd.h>
#include <security/pam_appl.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace vorlane {

namespace {

std::string currentUserName() {
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> scratch(static_cast<std::size_t>(size > 0 ? size : 16384));
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, scratch.data(), scratch.size(), &found) != 0 ||
        found == nullptr) {
        return {};
    }
    return found->pw_name;
}

AuthenticationOutcome outcomeOf(int pamStatus) {
    switch (pamStatus) {
    case PAM_SUCCESS:
        return AuthenticationOutcome::authenticated;
    case PAM_AUTH_ERR:
    case PAM_MAXTRIES:
    case PAM_CRED_INSUFFICIENT:
    case PAM_USER_UNKNOWN:
    case PAM_PERM_DENIED:
    case PAM_ACCT_EXPIRED:
    case PAM_NEW_AUTHTOK_REQD:
    case PAM_AUTHTOK_EXPIRED:
        return AuthenticationOutcome::failed;
    default:
        return AuthenticationOutcome::unavailable;
    }
}

// Frees a reply array PAM has not taken over, wiping any answer already in it.
void dropResponses(pam_response* responses, int count) {
    for (int i = 0; i < count; ++i) {
        if (responses[i].resp != nullptr) {
            SecretBuffer::wipe(responses[i].resp, std::strlen(responses[i].resp));
            std::free(responses[i].resp);
        }
    }
    std::free(responses);
}

} // namespace

// The state of one evaluation, shared by the main thread and its PAM worker. The prompt and the
// reply are touched on the main thread only; the rest is guarded by `m_mutex`.
class PamAuthenticator::Conversation : public std::enable_shared_from_this<Conversation> {
public:
    Conversation(Timers& mainLoop, Reply reply)
        : m_mainLoop(&mainLoop)
        , m_reply(std::move(reply)) {}

    void setPrompt(std::unique_ptr<AuthenticationPrompt> prompt) { m_prompt = std::move(prompt); }

    // Worker thread: the whole PAM transaction.
    void run(const std::string& user) {
        int status = PAM_USER_UNKNOWN;
        if (!user.empty()) {
            const pam_conv conversation{&Conversation::converse, this};
            pam_handle_t* handle = nullptr;
            status =
                pam_start(std::string(serviceName).c_str(), user.c_str(), &conversation, &handle);
            if (status == PAM_SUCCESS) {
                // An account without a password proves nothing about who is at the keyboard.
                status = pam_authenticate(handle, PAM_DISALLOW_NULL_AUTHTOK);
                if (status == PAM_SUCCESS) {
                    status = pam_acct_mgmt(handle, PAM_DISALLOW_NULL_AUTHTOK);
                }
                pam_end(handle, status);
            }
        }
        const AuthenticationOutcome outcome =
            isCancelled() ? AuthenticationOutcome::cancelled : outcomeOf(status);
        toMainLoop([self = shared_from_this(), outcome] { self->finish(outcome); });
    }

    // Main thread: the user gave up, or the authenticator is going away. The worker stops at its
    // next question (PAM gets a conversation error); the reply goes out now.
    void cancel(bool detachFromMainLoop) {
        {
            std::lock_guard lock(m_mutex);
            m_cancelled = true;
            if (detachFromMainLoop) {
                m_mainLoop = nullptr;
            }
        }
        m_answered.notify_all();
        finish(AuthenticationOutcome::cancelled);
    }

    // Main thread: replies once and takes the prompt down. The prompt may be the caller (its
    // cancel button), so it is destroyed from the main loop afterwards, not here.
    void finish(AuthenticationOutcome outcome) {
        if (!m_reply) {
            return;
        }
        Reply reply = std::exchange(m_reply, nullptr);
        if (m_prompt) {
            m_prompt->close();
            std::shared_ptr<AuthenticationPrompt> closed = std::move(m_prompt);
            std::lock_guard lock(m_mutex);
            if (m_mainLoop != nullptr) {
                m_mainLoop->post([closed] {});
            }
        }
        reply(outcome);
    }

private:
    static int converse(int count, const pam_message** messages, pam_response** responses,
                        void* data) {
        if (count <= 0 || count > PAM_MAX_NUM_MSG) {
            return PAM_CONV_ERR;
        }
        auto* self = static_cast<Conversation*>(data);
        auto* replies = static_cast<pam_response*>(
            std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
        if (replies == nullptr) {
            return PAM_BUF_ERR;
        }
        for (int i = 0; i < count; ++i) {
            const pam_message& message = *messages[i];
            const std::string text = message.msg != nullptr ? message.msg : "";
            switch (message.msg_style) {
            case PAM_PROMPT_ECHO_OFF:
            case PAM_PROMPT_ECHO_ON: {
                if (responses == nullptr) {
                    dropResponses(replies, count); // a question with nowhere to put the answer
                    return PAM_CONV_ERR;
                }
                std::optional<SecretBuffer> answer =
                    self->ask(text, message.msg_style == PAM_PROMPT_ECHO_ON);
                if (!answer) {
                    dropResponses(replies, count);
                    return PAM_CONV_ERR;
                }
                // PAM frees (and its modules overwrite) this copy; ours is wiped when `answer`
                // goes out of scope.
                auto* copy = static_cast<char*>(std::malloc(answer->size() + 1));
                if (copy == nullptr) {
                    dropResponses(replies, count);
                    return PAM_BUF_ERR;
                }
                std::memcpy(copy, answer->view().data(), answer->size());
                copy[answer->size()] = '\0';
                replies[i].resp = copy;
                break;
            }
            case PAM_ERROR_MSG:
            case PAM_TEXT_INFO:
                self->tell(text, message.msg_style == PAM_ERROR_MSG);
                break;
            default:
                dropResponses(replies, count);
                return PAM_CONV_ERR;
            }
        }
        // Some modules pass no reply pointer with messages that need no answer.
        if (responses != nullptr) {
            *responses = replies;
        } else {
            dropResponses(replies, count);
        }
        return PAM_SUCCESS;
    }

    // Worker thread: shows PAM's question and waits for the typed answer; nothing when the user
    // cancelled.
    std::optional<SecretBuffer> ask(const std::string& text, bool echo) {
        std::unique_lock lock(m_mutex);
        if (m_cancelled || m_mainLoop == nullptr) {
            return std::nullopt;
        }
        std::weak_ptr<Conversation> weak = weak_from_this();
        m_mainLoop->post([self = shared_from_this(), weak, text, echo] {
            if (self->m_prompt) {
                self->m_prompt->ask(text, echo, [weak](SecretBuffer answer) {
                    if (auto conversation = weak.lock()) {
                        conversation->deliver(std::move(answer));
                    }
                });
            }
        });
        m_answered.wait(lock, [this] { return m_cancelled || m_answer.has_value(); });
        std::optional<SecretBuffer> answer = std::exchange(m_answer, std::nullopt);
        if (m_cancelled) {
            return std::nullopt; // `answer`, if any, is wiped on the way out
        }
        return answer;
    }

    // Any thread: the user's entry for the question the worker waits on.
    void deliver(SecretBuffer answer) {
        {
            std::lock_guard lock(m_mutex);
            m_answer = std::move(answer);
        }
        m_answered.notify_all();
    }

    // Worker thread: a message that needs no answer.
    void tell(const std::string& text, bool isError) {
        toMainLoop([self = shared_from_this(), text, isError] {
            if (self->m_prompt) {
                self->m_prompt->showMessage(text, isError);
            }
        });
    }

    bool isCancelled() {
        std::lock_guard lock(m_mutex);
        return m_cancelled;
    }

    void toMainLoop(Timers::Callback callback) {
        std::lock_guard lock(m_mutex);
        if (m_mainLoop != nullptr) {
            m_mainLoop->post(std::move(callback));
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_answered;
    Timers* m_mainLoop;                             // null once the authenticator is gone
    bool m_cancelled = false;                       // guarded
    std::optional<SecretBuffer> m_answer;           // guarded
    std::unique_ptr<AuthenticationPrompt> m_prompt; // main thread
    Reply m_reply;                                  // main thread; empty once replied
};

PamAuthenticator::PamAuthenticator(Timers& mainLoop, AuthenticationPromptFactory promptFactory,
                                   FprintdProbe biometricsProbe)
    : m_mainLoop(mainLoop)
    , m_promptFactory(std::move(promptFactory))
    , m_biometricsProbe(std::move(biometricsProbe))
    , m_userName(currentUserName()) {}

PamAuthenticator::~PamAuthenticator() {
    for (const auto& weak : m_conversations) {
        if (auto conversation = weak.lock()) {
            conversation->cancel(true);
        }
    }
}

void PamAuthenticator::evaluate(const AuthenticationRequest& request, Reply reply) {
    std::erase_if(m_conversations, [](const auto& weak) { return weak.expired(); });
    auto conversation = std::make_shared<Conversation>(m_mainLoop, std::move(reply));
    std::weak_ptr<Conversation> weak = conversation;
    conversation->setPrompt(m_promptFactory(request, [weak] {
        if (auto cancelled = weak.lock()) {
            cancelled->cancel(false);
        }
    }));
    m_conversations.push_back(conversation);
    try {
        // Detached: a PAM module may block for a long time (a fingerprint reader waits for its
        // own timeout), and neither quitting nor cancelling should wait for it. The thread keeps
        // the conversation alive until it ends.
        std::thread([conversation, user = m_userName] { conversation->run(user); }).detach();
    } catch (const std::system_error&) {
        m_mainLoop.post(
            [conversation] { conversation->finish(AuthenticationOutcome::unavailable); });
    }
}

BiometricsState PamAuthenticator::biometrics() {
    return m_biometricsProbe.probe(m_userName);
}

} // namespace vorlane
