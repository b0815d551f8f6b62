// SPDX-License-Identifier: GPL-3.0-or-later
// A notification service of the tests' own: owns org.freedesktop.Notifications on the session bus
// it is started on and appends every notification it is given to a file, one JSON object a line
// (summary, body, actions, the hints the tests read, and the id it answered). The tests make it
// emit ActionInvoked, as a desktop does when a notification is clicked, through a method of its
// own. Prints "ready" once it owns the name. CAPABILITIES, comma-separated, is what it says it
// can do (GetCapabilities); by default what GNOME Shell says, body markup included.
//
//   vorlane_test_notification_server RECORD_FILE [CAPABILITIES]

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>

namespace {

class NotificationServer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    NotificationServer(QString recordPath, QStringList capabilities)
        : m_recordPath(std::move(recordPath))
        , m_capabilities(std::move(capabilities)) {}

public Q_SLOTS:
    uint Notify(const QString& appName, uint replacesId, const QString& appIcon,
                const QString& summary, const QString& body, const QStringList& actions,
                const QVariantMap& hints, int expireTimeout) {
        const uint id = ++m_lastId;
        QJsonObject hintObject;
        for (auto hint = hints.begin(); hint != hints.end(); ++hint) {
            // The urgency is a byte on the wire; anything else the tests read is a string.
            hintObject.insert(hint.key(), hint.key() == QLatin1String("urgency")
                                              ? QJsonValue(hint.value().toInt())
                                              : QJsonValue(hint.value().toString()));
        }
        const QJsonObject record{
            {QStringLiteral("id"), static_cast<int>(id)},
            {QStringLiteral("appName"), appName},
            {QStringLiteral("replacesId"), static_cast<int>(replacesId)},
            {QStringLiteral("appIcon"), appIcon},
            {QStringLiteral("summary"), summary},
            {QStringLiteral("body"), body},
            {QStringLiteral("actions"), QJsonArray::fromStringList(actions)},
            {QStringLiteral("hints"), hintObject},
            {QStringLiteral("expireTimeout"), expireTimeout},
        };
        QFile file(m_recordPath);
        if (file.open(QIODevice::Append)) {
            file.write(QJsonDocument(record).toJson(QJsonDocument::Compact) + '\n');
        }
        return id;
    }

    QStringList GetCapabilities() { return m_capabilities; }

    QString GetServerInformation(QString& vendor, QString& version, QString& specVersion) {
        vendor = QStringLiteral("Vorlane tests");
        version = QStringLiteral("1");
        specVersion = QStringLiteral("1.2");
        return QStringLiteral("vorlane-test-notifications");
    }

    void CloseNotification(uint) {}

private:
    QString m_recordPath;
    QStringList m_capabilities;
    uint m_lastId = 0;
};

// The tests' handle: "click" a notification.
class TestControl : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.vorlane.Test.NotificationServer")

public Q_SLOTS:
    void Invoke(uint id, const QString& action) {
        QDBusMessage signal = QDBusMessage::createSignal(
            QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("ActionInvoked"));
        signal << id << action;
        QDBusConnection::sessionBus().send(signal);
    }
};

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: %s RECORD_FILE [CAPABILITIES]\n", argv[0]);
        return 2;
    }
    const QStringList capabilities =
        argc == 3 ? QString::fromLocal8Bit(argv[2]).split(u',', Qt::SkipEmptyParts)
                  : QStringList{QStringLiteral("actions"), QStringLiteral("body"),
                                QStringLiteral("body-markup"), QStringLiteral("sound")};
    QDBusConnection bus = QDBusConnection::sessionBus();
    NotificationServer server{QString::fromLocal8Bit(argv[1]), capabilities};
    TestControl control;
    if (!bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &server,
                            QDBusConnection::ExportAllSlots) ||
        !bus.registerObject(QStringLiteral("/test"), &control, QDBusConnection::ExportAllSlots) ||
        !bus.registerService(QStringLiteral("org.freedesktop.Notifications"))) {
        std::fprintf(stderr, "cannot serve notifications: %s\n",
                     qPrintable(bus.lastError().message()));
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

#include "NotificationServer.moc"
