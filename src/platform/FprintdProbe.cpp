// SPDX-License-Identifier: GPL-3.0-or-later
#include "FprintdProbe.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>
#include <utility>

namespace vorlane {

namespace {

const QString fprintdService = QStringLiteral("net.reactivated.Fprint");
const QString managerPath = QStringLiteral("/net/reactivated/Fprint/Manager");
const QString managerInterface = QStringLiteral("net.reactivated.Fprint.Manager");
const QString deviceInterface = QStringLiteral("net.reactivated.Fprint.Device");

// The single reply argument of a successful call, or nothing.
std::optional<QVariant> callForValue(const QDBusConnection& bus, const QDBusMessage& message,
                                     std::chrono::milliseconds timeout) {
    const QDBusMessage reply = bus.call(message, QDBus::Block, static_cast<int>(timeout.count()));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1) {
        return std::nullopt;
    }
    return reply.arguments().constFirst();
}

} // namespace

FprintdProbe::FprintdProbe(QDBusConnection bus, std::chrono::milliseconds timeout)
    : m_bus(std::move(bus))
    , m_timeout(timeout) {}

BiometricsState FprintdProbe::probe(const std::string& userName) const {
    BiometricsState state;
    if (!m_bus.isConnected()) {
        return state;
    }
    const auto devices =
        callForValue(m_bus,
                     QDBusMessage::createMethodCall(fprintdService, managerPath, managerInterface,
                                                    QStringLiteral("GetDevices")),
                     m_timeout);
    if (!devices) {
        return state;
    }
    const auto paths = qdbus_cast<QList<QDBusObjectPath>>(*devices);
    if (paths.isEmpty()) {
        return state;
    }
    state.type = BiometryType::fingerprint;
    // fprintd answers "no enrolled prints" with an error rather than an empty list; both mean
    // this reader cannot vouch for the user.
    for (const QDBusObjectPath& path : paths) {
        QDBusMessage list = QDBusMessage::createMethodCall(
            fprintdService, path.path(), deviceInterface, QStringLiteral("ListEnrolledFingers"));
        list << QString::fromStdString(userName);
        const auto fingers = callForValue(m_bus, list, m_timeout);
        if (fingers && !fingers->toStringList().isEmpty()) {
            state.canEvaluate = true;
            break;
        }
    }
    return state;
}

} // namespace vorlane
