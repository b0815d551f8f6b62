// SPDX-License-Identifier: GPL-3.0-or-later
#include "PasswordPromptDialog.h"

#include "DialogAuthenticationPrompt.h"
#include "PamAuthenticator.h"
#include "PamTestEnvironment.h"
#include "QtTimers.h"
#include "auth/AuthManager.h"

#include <QAccessible>
#include <QApplication>
#include <QDBusConnection>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>

namespace vorlane {
namespace {

using testing::PamPasswords;

QPushButton* buttonTitled(const QWidget& dialog, const QString& title) {
    for (auto* button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == title) {
            return button;
        }
    }
    return nullptr;
}

bool showsText(const QWidget& dialog, const QString& text) {
    for (const auto* label : dialog.findChildren<QLabel*>()) {
        if (label->isVisible() && label->text() == text) {
            return true;
        }
    }
    return false;
}

TEST(PasswordPromptDialogTest, TypedPasswordIsHandedOverOnEnterAndLeavesTheField) {
    PasswordPromptDialog dialog("Reveal password for Mail server", "Use Password", "Cancel");
    dialog.show();
    QSignalSpy confirmed(&dialog, &PasswordPromptDialog::entryConfirmed);
    dialog.ask("Password: ", false);

    EXPECT_TRUE(showsText(dialog, "Reveal password for Mail server"));
    EXPECT_TRUE(showsText(dialog, "Password:"));
    auto* field = dialog.findChild<QLineEdit*>();
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    ASSERT_NE(buttonTitled(dialog, "Cancel"), nullptr);
    ASSERT_NE(buttonTitled(dialog, "OK"), nullptr);
    EXPECT_TRUE(buttonTitled(dialog, "OK")->isDefault());

    QTest::keyClicks(field, "s3cret ");
    field->insert(QString::fromUtf8("wörd")); // QTest types ASCII only; PAM gets UTF-8
    QTest::keyClick(field, Qt::Key_Return);

    ASSERT_EQ(confirmed.count(), 1);
    EXPECT_TRUE(dialog.isVisible()); // PAM, not the button, ends the conversation
    const SecretBuffer entry = dialog.takeEntry();
    EXPECT_EQ(entry.view(), "s3cret wörd");
    EXPECT_TRUE(field->text().isEmpty());
}

TEST(PasswordPromptDialogTest, WhilePamWaitsForAFingerTheFallbackLetsThePasswordGoAhead) {
    PasswordPromptDialog dialog("Reveal password for Mail server", "Use Password", "Cancel");
    dialog.show();
    QSignalSpy confirmed(&dialog, &PasswordPromptDialog::entryConfirmed);
    dialog.showMessage("Place your finger on the fingerprint reader", false);
    EXPECT_TRUE(showsText(dialog, "Place your finger on the fingerprint reader"));

    QPushButton* fallback = buttonTitled(dialog, "Use Password");
    ASSERT_NE(fallback, nullptr);
    QTest::mouseClick(fallback, Qt::LeftButton);
    auto* field = dialog.findChild<QLineEdit*>();
    QTest::keyClicks(field, "typed ahead");
    QTest::mouseClick(fallback, Qt::LeftButton);
    EXPECT_EQ(confirmed.count(), 0); // nothing asked yet: there is nobody to hand it to

    dialog.ask("Password: ", false); // the reader gave up; PAM asks for the password
    ASSERT_EQ(confirmed.count(), 1);
    EXPECT_EQ(dialog.takeEntry().view(), "typed ahead");
}

TEST(PasswordPromptDialogTest, VisibleQuestionsEchoAndErrorsAreShown) {
    PasswordPromptDialog dialog("Authenticate to export secrets for Acme", "Use Password",
                                "Cancel");
    dialog.show();
    dialog.ask("One-time code: ", true);
    EXPECT_EQ(dialog.findChild<QLineEdit*>()->echoMode(), QLineEdit::Normal);
    dialog.showMessage("Account locked for 10 minutes", true);
    EXPECT_TRUE(showsText(dialog, "Account locked for 10 minutes"));
}

// The whole lock: AuthManager, PAM through pam_wrapper, and the real dialog on screen; the test
// types as the user would.
class VaultLockEndToEndTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(PamPasswords::wrapped())
            << "run through ctest: PAM must be preloaded with pam_wrapper";
        m_passwords.set(m_authenticator.userName(), "correct horse");
        m_manager.connectPlatform(m_authenticator, m_mainLoop);
        m_window.show();
        m_window.activateWindow();
        QApplication::setActiveWindow(&m_window);
    }

    PasswordPromptDialog* waitForDialog() {
        PasswordPromptDialog* found = nullptr;
        const bool shown = QTest::qWaitFor(
            [&] {
                found = m_window.findChild<PasswordPromptDialog*>();
                return found != nullptr && found->isVisible() &&
                       found->findChild<QLineEdit*>()->isEnabled() &&
                       buttonTitled(*found, "OK") != nullptr;
            },
            10000);
        return shown ? found : nullptr;
    }

    std::optional<bool> waitForReply(const std::optional<bool>& reply) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return reply.has_value(); }, 20000)) << "no reply";
        return reply;
    }

    QtTimers m_mainLoop;
    PamPasswords m_passwords;
    PamAuthenticator m_authenticator{m_mainLoop, DialogAuthenticationPrompt::factory(),
                                     FprintdProbe(QDBusConnection(QStringLiteral("no-bus")))};
    AuthManager m_manager;
    QMainWindow m_window;
};

TEST_F(VaultLockEndToEndTest, OnlyTheRightPasswordRevealsAndTheDialogGoesAway) {
    for (const auto& [typed, expected] :
         {std::pair{"battery staple", false}, std::pair{"correct horse", true}}) {
        SCOPED_TRACE(typed);
        // The offscreen platform does not hand activation back when a dialog closes, as a
        // window manager would; the prompt sits on whatever window is active.
        QApplication::setActiveWindow(&m_window);
        std::optional<bool> reply;
        m_manager.authenticateForSensitiveAction("Reveal password for Mail server",
                                                 [&](bool ok) { reply = ok; });
        QPointer<PasswordPromptDialog> dialog = waitForDialog();
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
        EXPECT_TRUE(showsText(*dialog, "Reveal password for Mail server"));

        QTest::keyClicks(dialog->findChild<QLineEdit*>(), typed);
        QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
        EXPECT_EQ(waitForReply(reply), expected);
        EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.isNull(); }, 5000));
    }
}

TEST_F(VaultLockEndToEndTest, EscapeAnswersFalseAtOnce) {
    std::optional<bool> reply;
    m_manager.authenticateForSensitiveAction("Authenticate to export secrets for Acme",
                                             [&](bool ok) { reply = ok; });
    QPointer<PasswordPromptDialog> dialog = waitForDialog();
    ASSERT_TRUE(dialog);
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(waitForReply(reply), false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.isNull(); }, 5000));
}

// A screen reader finds each prompt through Qt's accessibility cache. Prompts come and go at the
// same few addresses (one is freed, the next takes its place), so a refused prompt must leave the
// cache as it found it, or the next one answers with a dead interface or is missing altogether.
TEST_F(VaultLockEndToEndTest, EachNewPromptAnswersAssistiveTechnologyWithItsOwnText) {
    for (int round = 1; round <= 6; ++round) {
        const QString reason =
            QStringLiteral("Authenticate to export secrets for Client %1").arg(round);
        SCOPED_TRACE(reason.toStdString());
        QApplication::setActiveWindow(&m_window);
        std::optional<bool> reply;
        m_manager.authenticateForSensitiveAction(reason.toStdString(),
                                                 [&](bool ok) { reply = ok; });
        QPointer<PasswordPromptDialog> dialog = waitForDialog();
        ASSERT_TRUE(dialog);

        QAccessibleInterface* prompt = QAccessible::queryAccessibleInterface(dialog);
        ASSERT_NE(prompt, nullptr);
        ASSERT_TRUE(prompt->isValid());
        ASSERT_EQ(prompt->object(), dialog.data());
        EXPECT_EQ(prompt->role(), QAccessible::Dialog);
        QStringList texts;
        for (int i = 0; i < prompt->childCount(); ++i) {
            texts << prompt->child(i)->text(QAccessible::Name);
        }
        EXPECT_TRUE(texts.contains(reason)) << texts.join(" | ").toStdString();

        // Refused both ways: the user cancels, or PAM turns the password down.
        auto* field = dialog->findChild<QLineEdit*>();
        if (round % 2 == 1) {
            QTest::keyClick(field, Qt::Key_Escape);
        } else {
            QTest::keyClicks(field, "battery staple");
            QTest::keyClick(field, Qt::Key_Return);
        }
        EXPECT_EQ(waitForReply(reply), false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return dialog.isNull(); }, 5000));
    }
}

} // namespace
} // namespace vorlane
