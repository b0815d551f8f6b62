// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

namespace vorlane {

// The running program's ear for the next one started on the same vault: that one finds the vault
// locked (VaultLock), says "raise" on this local socket and exits, and this program brings its
// window to the front. The socket is the user's only (in the runtime folder, or beside the vault
// without one; owner-only permissions).
// Main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    static constexpr QLatin1StringView raiseMessage{"raise"};

    explicit SingleInstance(QObject* parent = nullptr);
    ~SingleInstance() override;

    // Starts listening at `socketName`, replacing a socket left behind by a program that died
    // (only the holder of the vault's lock may call this, so no live program owns it). False when
    // the socket cannot be created.
    bool listen(const QString& socketName);

    // Asks the program listening at `socketName` to raise its window. It may still be opening the
    // vault, so this keeps trying for up to `timeoutMs` while `stillWorthTrying` holds. True once
    // that program has acknowledged.
    static bool askToRaise(const QString& socketName, int timeoutMs,
                           const std::function<bool()>& stillWorthTrying);

Q_SIGNALS:
    void raiseRequested();

private:
    QLocalServer* m_server;
};

} // namespace vorlane
