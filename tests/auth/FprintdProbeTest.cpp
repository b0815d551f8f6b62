// SPDX-License-Identifier: GPL-3.0-or-later
#include "FprintdProbe.h"

#include <QDBusConnection>
#include <QProcess>

#include <gtest/gtest.h>

namespace vorlane {
namespace {

TEST(FprintdProbeTest, NoBusMeansNoBiometrics) {
    const FprintdProbe probe(QDBusConnection(QStringLiteral("vorlane-never-connected")));
    const BiometricsState state = probe.probe("someone");
    EXPECT_FALSE(state.canEvaluate);
    EXPECT_EQ(state.type, BiometryType::none);
}

// A real bus on which fprintd is not running (and cannot be started): the call fails at once
// and reads as "no biometrics".
TEST(FprintdProbeTest, BusWithoutFprintdMeansNoBiometrics) {
    QProcess daemon;
    daemon.start(QStringLiteral("dbus-daemon"),
                 {QStringLiteral("--session"), QStringLiteral("--nofork"),
                  QStringLiteral("--print-address=1")});
    ASSERT_TRUE(daemon.waitForStarted()) << "dbus-daemon is part of the test set-up";
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
    {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(address, QStringLiteral("vorlane-probe-test"));
        ASSERT_TRUE(bus.isConnected());
        const BiometricsState state = FprintdProbe(bus).probe("someone");
        EXPECT_FALSE(state.canEvaluate);
        EXPECT_EQ(state.type, BiometryType::none);
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("vorlane-probe-test"));
    daemon.terminate();
    daemon.waitForFinished();
}

} // namespace
} // namespace vorlane
