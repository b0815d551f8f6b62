// SPDX-License-Identifier: GPL-3.0-or-later
#include "PamAuthenticator.h"

#include "PamTestEnvironment.h"
#include "QtTimers.h"
#include "ScriptedPerson.h"
#include "auth/AuthManager.h"

#include <QDBusConnection>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace vorlane {
namespace {

using testing::PamPasswords;
using testing::ScriptedPerson;

constexpr int replyTimeoutMs = 20000; // PAM's own failure delay is a couple of seconds

// A probe that cannot reach any bus: these tests are about PAM.
FprintdProbe noBiometrics() {
    return FprintdProbe(QDBusConnection(QStringLiteral("vorlane-no-bus")));
}

class PamAuthenticatorTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(PamPasswords::wrapped())
            << "run through ctest: PAM must be preloaded with pam_wrapper";
        m_authenticator =
            std::make_unique<PamAuthenticator>(m_mainLoop, m_person.factory(), noBiometrics());
        ASSERT_FALSE(m_authenticator->userName().empty());
        m_manager.connectPlatform(*m_authenticator, m_mainLoop);
    }

    // Runs one sensitive action through AuthManager and waits for its reply.
    std::optional<bool> authenticate(const std::string& reason) {
        std::optional<bool> reply;
        m_manager.authenticateForSensitiveAction(reason, [&](bool ok) { reply = ok; });
        EXPECT_FALSE(reply.has_value()) << "the reply must not come inside the call";
        EXPECT_TRUE(QTest::qWaitFor([&] { return reply.has_value(); }, replyTimeoutMs))
            << "no reply";
        return reply;
    }

    // Evaluates through the adapter alone, to see how it ended.
    std::optional<AuthenticationOutcome> evaluate() {
        std::optional<AuthenticationOutcome> outcome;
        m_authenticator->evaluate({"Reveal API key for Hosting", "Use Password", "Cancel"},
                                  [&](AuthenticationOutcome o) { outcome = o; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return outcome.has_value(); }, replyTimeoutMs))
            << "no reply";
        return outcome;
    }

    const std::string& user() const { return m_authenticator->userName(); }

    QtTimers m_mainLoop;
    PamPasswords m_passwords;
    ScriptedPerson m_person;
    std::unique_ptr<PamAuthenticator> m_authenticator;
    AuthManager m_manager;
};

TEST_F(PamAuthenticatorTest, RightPasswordAuthenticatesAndEveryActionAsksAgain) {
    m_passwords.set(user(), "correct horse");
    m_person.willType("correct horse");
    m_person.willType("correct horse");

    EXPECT_EQ(authenticate("Reveal password for Mail server"), true);
    EXPECT_EQ(authenticate("Reveal API key for Mail server"), true);

    ASSERT_EQ(m_person.requests.size(), 2u);
    EXPECT_EQ(m_person.requests[0].reason, "Reveal password for Mail server");
    EXPECT_EQ(m_person.requests[0].fallbackTitle, "Use Password");
    EXPECT_EQ(m_person.requests[0].cancelTitle, "Cancel");
    EXPECT_EQ(m_person.requests[1].reason, "Reveal API key for Mail server");
    EXPECT_EQ(m_person.echoes, (std::vector<bool>{false, false})); // a password is never echoed
    EXPECT_EQ(m_person.closedPrompts, 2);
    // Authenticating is not unlocking: the lock state is nobody's business here.
    EXPECT_FALSE(m_manager.isAuthenticated());
    EXPECT_EQ(m_manager.lastAuthDate(), std::nullopt);
}

TEST_F(PamAuthenticatorTest, WrongPasswordFailsAndPamsNoticeIsShown) {
    m_passwords.set(user(), "correct horse");
    m_person.willType("battery staple");

    EXPECT_EQ(evaluate(), AuthenticationOutcome::failed);
    // pam_matrix, like pam_unix, tells the user why; the prompt must have shown it.
    EXPECT_FALSE(m_person.errors.empty());
    EXPECT_EQ(m_person.closedPrompts, 1);
}

TEST_F(PamAuthenticatorTest, CancelledPromptAnswersFalse) {
    m_passwords.set(user(), "correct horse");
    m_person.willCancel();

    EXPECT_EQ(evaluate(), AuthenticationOutcome::cancelled);
    EXPECT_EQ(m_person.closedPrompts, 1);

    m_person.willCancel();
    EXPECT_EQ(authenticate("Authenticate to export secrets for Acme"), false);
}

TEST_F(PamAuthenticatorTest, OtherRefusalsFailToo) {
    const struct {
        std::string user;
        const char* service;
        const char* typed;
    } refusals[] = {
        {user(), "vorlane", ""}, // an empty answer is not a password
        // pam_matrix lets the user use another service only: the password is right,
        // pam_acct_mgmt says no.
        {user(), "some-other-service", "correct horse"},
        {"somebody-else", "vorlane", "correct horse"}, // the user is not in the database
    };
    for (const auto& refusal : refusals) {
        SCOPED_TRACE(refusal.user + " " + refusal.service + " '" + refusal.typed + "'");
        m_passwords.set(refusal.user, "correct horse", refusal.service);
        m_person.willType(refusal.typed);
        EXPECT_EQ(authenticate("Reveal password for Mail server"), false);
    }
}

TEST_F(PamAuthenticatorTest, ReplyArrivesOnTheMainThread) {
    m_passwords.set(user(), "correct horse");
    m_person.willType("correct horse");
    const std::thread::id mainThread = std::this_thread::get_id();
    std::optional<std::thread::id> replyThread;
    m_manager.authenticateForSensitiveAction(
        "Reveal password for Mail server", [&](bool) { replyThread = std::this_thread::get_id(); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return replyThread.has_value(); }, replyTimeoutMs));
    EXPECT_EQ(replyThread, mainThread);
}

TEST_F(PamAuthenticatorTest, GoingAwayMidConversationCancelsAndClosesThePrompt) {
    m_passwords.set(user(), "correct horse");
    m_person.willStare();
    std::optional<AuthenticationOutcome> outcome;
    m_authenticator->evaluate({"Reveal password for Mail server", "Use Password", "Cancel"},
                              [&](AuthenticationOutcome o) { outcome = o; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_person.questions.empty(); }, replyTimeoutMs));

    m_authenticator.reset();

    EXPECT_EQ(outcome, AuthenticationOutcome::cancelled);
    EXPECT_EQ(m_person.closedPrompts, 1);
    EXPECT_EQ(m_person.livePrompts, 0);
}

} // namespace
} // namespace vorlane
