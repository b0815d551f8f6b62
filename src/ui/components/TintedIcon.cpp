#include "components/TintedIcon.h"

#include "QtText.h"
#include "SymbolIcon.h"

#include <QPainter>
#include <QPixmapCache>

#include <cmath>

namespace vorlane {

QPixmap TintedIcon::pixmap(std::string_view symbol, int size, const QColor& color,
                           qreal devicePixelRatio) {
    const QString key = QStringLiteral("vorlane-tinted-%1-%2-%3-%4")
                            .arg(toQString(symbol))
                            .arg(color.rgba())
                            .arg(size)
                            .arg(devicePixelRatio);
    QPixmap cached;
    if (QPixmapCache::find(key, &cached)) {
        return cached;
    }
    const int device = static_cast<int>(std::lround(size * devicePixelRatio));
    QPixmap tinted = SymbolIcon::icon(symbol).pixmap(QSize(device, device));
    if (tinted.isNull()) {
        return tinted;
    }
    {
        QPainter painter(&tinted);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(tinted.rect(), color);
    }
    tinted.setDevicePixelRatio(devicePixelRatio);
    QPixmapCache::insert(key, tinted);
    return tinted;
}

} // namespace vorlane
