// SPDX-License-Identifier: GPL-3.0-or-later
#include "VaultLock.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace vorlane {

namespace {

// The vault may not exist yet (the first run creates it), nor its folder: resolve what exists.
QString canonicalVaultPath(const std::string& vaultPath) {
    const QFileInfo file(QString::fromStdString(vaultPath));
    if (const QString canonical = file.canonicalFilePath(); !canonical.isEmpty()) {
        return canonical;
    }
    const QString folder = file.absoluteDir().canonicalPath();
    return folder.isEmpty() ? file.absoluteFilePath() : folder + QLatin1Char('/') + file.fileName();
}

} // namespace

VaultLock::VaultLock(const std::string& vaultPath)
    : m_file(lockFilePath(vaultPath)) {
    // Age says nothing about a lock held by a program that is still running.
    m_file.setStaleLockTime(0);
}

VaultLock::~VaultLock() = default;

VaultLock::Outcome VaultLock::tryAcquire() {
    if (m_file.isLocked() || m_file.tryLock(0)) {
        return Outcome::acquired;
    }
    return m_file.error() == QLockFile::LockFailedError ? Outcome::heldByAnother
                                                        : Outcome::unavailable;
}

bool VaultLock::isHeld() const {
    return m_file.isLocked();
}

std::optional<VaultLock::Holder> VaultLock::holder() const {
    Holder holder;
    QString host;
    if (!m_file.getLockInfo(&holder.pid, &host, &holder.program)) {
        return std::nullopt;
    }
    return holder;
}

QString VaultLock::lockFilePath(const std::string& vaultPath) {
    return canonicalVaultPath(vaultPath) + QStringLiteral(".lock");
}

QString VaultLock::instanceSocketName(const std::string& vaultPath) {
    const QByteArray hash =
        QCryptographicHash::hash(canonicalVaultPath(vaultPath).toUtf8(), QCryptographicHash::Sha256)
            .toHex()
            .left(16);
    // Without XDG_RUNTIME_DIR, Qt would make up a folder under /tmp, where another user can
    // create the name first; the vault's own folder belongs to the user who opens it.
    QString folder;
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    }
    if (folder.isEmpty()) {
        folder = QFileInfo(canonicalVaultPath(vaultPath)).absolutePath();
    }
    return folder + QStringLiteral("/vorlane-") + QString::fromLatin1(hash) +
           QStringLiteral(".socket");
}

} // namespace vorlane
