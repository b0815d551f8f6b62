// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Starts the tests' own notification service (tests/reminders/NotificationServer.cpp) on the
// session bus of the run, and reads back what it was shown. Stopped when this object ends.
// `capabilities` (comma-separated) replaces what the service says it can do; by default it reads
// body markup, as GNOME Shell does.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

namespace vorlane::testing {

class NotificationServerProcess {
public:
    explicit NotificationServerProcess(const QString& capabilities = {}) {
        m_process.setProgram(QStringLiteral(VORLANE_TEST_NOTIFICATION_SERVER));
        QStringList arguments{m_folder.filePath(QStringLiteral("shown.jsonl"))};
        if (!capabilities.isEmpty()) {
            arguments << capabilities;
        }
        m_process.setArguments(arguments);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start();
        m_ready = m_process.waitForReadyRead(10000) &&
                  m_process.readAllStandardOutput().startsWith("ready");
        EXPECT_TRUE(m_ready) << "the test notification service did not come up";
    }

    ~NotificationServerProcess() {
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    bool ready() const { return m_ready; }

    // Every notification shown so far, in order.
    std::vector<QJsonObject> shown() const {
        std::vector<QJsonObject> records;
        QFile file(m_folder.filePath(QStringLiteral("shown.jsonl")));
        if (!file.open(QIODevice::ReadOnly)) {
            return records;
        }
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (!line.isEmpty()) {
                records.push_back(QJsonDocument::fromJson(line).object());
            }
        }
        return records;
    }

    // What a desktop does when the person clicks notification `id` (action "default").
    void click(uint id, const QString& action = QStringLiteral("default")) const {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/test"),
            QStringLiteral("com.vorlane.Test.NotificationServer"), QStringLiteral("Invoke"));
        call << id << action;
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    bool m_ready = false;
};

} // namespace vorlane::testing
