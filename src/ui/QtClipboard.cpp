// SPDX-License-Identifier: GPL-3.0-or-later
#include "QtClipboard.h"

#include "QtText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>

namespace vorlane {

namespace {

bool isOutOfFocusWaylandClient() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland")) &&
           QGuiApplication::applicationState() != Qt::ApplicationActive;
}

} // namespace

void QtClipboard::clear() {
    const std::optional<std::string> before = text();
    QGuiApplication::clipboard()->clear();
    const bool stillThere = before.has_value() && text() == before;
    // Only out of focus: a copy clears before it writes, always with focus (the person just
    // clicked), and a detached clear racing that write could wipe the new text.
    if (!stillThere && !isOutOfFocusWaylandClient()) {
        return;
    }
    const QString wlCopy = QStandardPaths::findExecutable(QStringLiteral("wl-copy"));
    if (!wlCopy.isEmpty()) {
        QProcess::startDetached(wlCopy, {QStringLiteral("--clear")});
    }
}

void QtClipboard::setText(const std::string& text) {
    auto* data = new QMimeData;
    data->setText(toQString(text));
    const QByteArray secret = QByteArrayLiteral("secret");
    data->setData(QStringLiteral("x-kde-passwordManagerHint"), secret);
    data->setData(QStringLiteral("text/x-kde-passwordManagerHint"), secret);
    QGuiApplication::clipboard()->setMimeData(data);
}

std::optional<std::string> QtClipboard::text() const {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (data == nullptr || !data->hasText()) {
        return std::nullopt;
    }
    return toStdString(data->text());
}

} // namespace vorlane
