// SPDX-License-Identifier: GPL-3.0-or-later
// One program per vault, with real processes: a second `vorlane` on an open vault asks the first
// to raise its window and leaves with status 0, `vorlane-cli demo` refuses the open vault, and a
// lock left by a program that was killed does not keep the next start out.

#include "SingleInstance.h"

#include "ScreenFixture.h"
#include "VaultLock.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <memory>

namespace vorlane::testing {
namespace {

class SingleInstanceTest : public ScreenFixture {
protected:
    std::string vaultPath() { return store().path(); }

    std::unique_ptr<QProcess> start(const QString& program, const QStringList& arguments) {
        auto process = std::make_unique<QProcess>();
        process->setProgram(program);
        process->setArguments(arguments);
        process->start();
        EXPECT_TRUE(process->waitForStarted(5000)) << program.toStdString();
        return process;
    }
    std::unique_ptr<QProcess> startVorlane() {
        return start(QStringLiteral(VORLANE_APP),
                     {QStringLiteral("--vault"), QString::fromStdString(vaultPath())});
    }
    // Runs the event loop meanwhile: the first instance may live in this very process.
    static bool finishes(QProcess& process, int timeoutMs = 15000) {
        return waitFor([&] { return process.state() == QProcess::NotRunning; }, timeoutMs);
    }
    bool listening() { return QFileInfo::exists(VaultLock::instanceSocketName(vaultPath())); }
    static void kill(QProcess& process) {
        ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
        process.waitForFinished(5000);
    }
};

TEST_F(SingleInstanceTest, ASecondStartAsksTheFirstToRaiseItsWindowAndLeaves) {
    // This process plays the first instance, so that the message can be seen arriving.
    VaultLock lock(vaultPath());
    ASSERT_EQ(lock.tryAcquire(), VaultLock::Outcome::acquired);
    SingleInstance first;
    ASSERT_TRUE(first.listen(VaultLock::instanceSocketName(vaultPath())));
    int raised = 0;
    QObject::connect(&first, &SingleInstance::raiseRequested, [&raised] { ++raised; });

    // Named another way, through a relative path: the same vault all the same.
    const auto second =
        start(QStringLiteral(VORLANE_APP),
              {QStringLiteral("--vault"),
               QDir::current().relativeFilePath(QString::fromStdString(vaultPath()))});
    ASSERT_TRUE(finishes(*second));
    EXPECT_EQ(second->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second->exitCode(), 0) << second->readAllStandardError().toStdString();
    EXPECT_EQ(raised, 1);
}

TEST_F(SingleInstanceTest, WithoutARuntimeFolderTheSocketIsBesideTheVaultNeverInTmp) {
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("XDG_RUNTIME_DIR"); // for this process and the second program alike
    const QString socketName = VaultLock::instanceSocketName(vaultPath());
    EXPECT_EQ(QFileInfo(socketName).absolutePath(),
              QFileInfo(QString::fromStdString(vaultPath())).canonicalPath());
    EXPECT_FALSE(socketName.startsWith(QDir::tempPath() + QStringLiteral("/runtime-")));

    VaultLock lock(vaultPath());
    ASSERT_EQ(lock.tryAcquire(), VaultLock::Outcome::acquired);
    SingleInstance first;
    ASSERT_TRUE(first.listen(socketName));
    int raised = 0;
    QObject::connect(&first, &SingleInstance::raiseRequested, [&raised] { ++raised; });
    const auto second = startVorlane();
    ASSERT_TRUE(finishes(*second));
    EXPECT_EQ(second->exitCode(), 0) << second->readAllStandardError().toStdString();
    EXPECT_EQ(raised, 1) << "the second program found the first where it listens";
    if (!runtime.isEmpty()) {
        qputenv("XDG_RUNTIME_DIR", runtime);
    }
}

TEST_F(SingleInstanceTest, TwoProgramsNeverHoldOneVaultAndAKilledOneDoesNotBlockTheNext) {
    const auto first = startVorlane();
    ASSERT_TRUE(waitFor([&] { return listening(); })) << "the first program never listened";

    const auto second = startVorlane();
    ASSERT_TRUE(finishes(*second));
    EXPECT_EQ(second->exitCode(), 0) << second->readAllStandardError().toStdString();
    EXPECT_EQ(first->state(), QProcess::Running);

    const auto demo = start(QStringLiteral(VORLANE_CLI),
                            {QStringLiteral("demo"), QString::fromStdString(vaultPath())});
    ASSERT_TRUE(finishes(*demo));
    EXPECT_EQ(demo->exitCode(), 1);
    EXPECT_EQ(demo->readAllStandardError().toStdString(),
              "vorlane-cli demo: " + vaultPath() + " is open in vorlane (process " +
                  std::to_string(first->processId()) +
                  "); a demo vault is only ever written to a new file\n");

    // A crash leaves the lock file and the socket behind; the next start takes both over.
    kill(*first);
    ASSERT_TRUE(QFileInfo::exists(VaultLock::lockFilePath(vaultPath())));
    const auto third = startVorlane();
    EXPECT_FALSE(finishes(*third, 3000)) << third->readAllStandardError().toStdString();
    const auto fourth = startVorlane();
    ASSERT_TRUE(finishes(*fourth));
    EXPECT_EQ(fourth->exitCode(), 0) << "the third program answers as the first did";
    kill(*third);
}

TEST_F(SingleInstanceTest, AVaultBeingWrittenByTheDemoIsNotOpened) {
    // Held as vorlane-cli holds it while it writes: by a program that will never answer.
    VaultLock demoWriting(vaultPath());
    ASSERT_EQ(demoWriting.tryAcquire(), VaultLock::Outcome::acquired);
    const auto vorlane = startVorlane();
    ASSERT_TRUE(finishes(*vorlane));
    EXPECT_EQ(vorlane->exitCode(), 1);
    EXPECT_EQ(vorlane->readAllStandardError().toStdString(),
              "vorlane: " + vaultPath() + " is in use by vorlane_screen_tests (process " +
                  std::to_string(QCoreApplication::applicationPid()) +
                  "); try again when it is done\n");
}

} // namespace
} // namespace vorlane::testing
