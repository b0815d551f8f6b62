// SPDX-License-Identifier: GPL-3.0-or-later
#include "SingleInstance.h"

#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>

#include <functional>

namespace vorlane {

namespace {

constexpr QLatin1StringView acknowledgement{"ok"};

} // namespace

SingleInstance::SingleInstance(QObject* parent)
    : QObject(parent)
    , m_server(new QLocalServer(this)) {
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                if (!socket->canReadLine()) {
                    return;
                }
                const QByteArray line = socket->readLine().trimmed();
                if (line == QByteArrayView(raiseMessage)) {
                    socket->write(QByteArray(acknowledgement.data(), acknowledgement.size()) +
                                  '\n');
                    socket->flush();
                    Q_EMIT raiseRequested();
                }
                socket->disconnectFromServer();
            });
        }
    });
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::listen(const QString& socketName) {
    QLocalServer::removeServer(socketName);
    return m_server->listen(socketName);
}

bool SingleInstance::askToRaise(const QString& socketName, int timeoutMs,
                                const std::function<bool()>& stillWorthTrying) {
    const QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired() && stillWorthTrying()) {
        QLocalSocket socket;
        socket.connectToServer(socketName);
        if (socket.waitForConnected(200)) {
            socket.write(QByteArray(raiseMessage.data(), raiseMessage.size()) + '\n');
            if (!socket.waitForBytesWritten(1000)) {
                return false;
            }
            // The other program answers from its main loop, which may be busy for a moment (a
            // large vault just opened): wait for as long as it lives, up to the deadline.
            while (!socket.canReadLine() && !deadline.hasExpired() && stillWorthTrying() &&
                   socket.state() == QLocalSocket::ConnectedState) {
                socket.waitForReadyRead(200);
            }
            return socket.canReadLine() &&
                   socket.readLine().trimmed() == QByteArrayView(acknowledgement);
        }
        // Not listening yet: the other program is still opening the vault, and listens the
        // moment its window is ready. A short nap, so that the window comes forward promptly.
        QThread::msleep(20);
    }
    return false;
}

} // namespace vorlane
