#include "QtClipboard.h"

#include "QtText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace vorlane {

void QtClipboard::clear() {
    QGuiApplication::clipboard()->clear();
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
