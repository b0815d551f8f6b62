// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/TintedIcon.h"

#include "QtText.h"
#include "SymbolIcon.h"

#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QWidget>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace vorlane {

namespace {

// Breeze draws actions and most small places in one grey, and a few symbols (the key) in one
// colour: a tint keeps their shape, shading included. Others only exist as full-colour
// application or device icons, which a tint would flatten into a blob; those keep their colours.
bool isOneColour(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    qsizetype opaque = 0;
    qsizetype coloured = 0;
    qsizetype offColour = 0;
    std::optional<QRgb> first;
    const auto far = [](QRgb a, QRgb b) {
        constexpr int tolerance = 48;
        return std::abs(qRed(a) - qRed(b)) > tolerance ||
               std::abs(qGreen(a) - qGreen(b)) > tolerance ||
               std::abs(qBlue(a) - qBlue(b)) > tolerance;
    };
    for (int y = 0; y < argb.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            if (qAlpha(line[x]) < 128) {
                continue;
            }
            ++opaque;
            if (QColor(line[x]).hsvSaturation() > 80) {
                ++coloured;
            }
            if (!first) {
                first = line[x];
            } else if (far(line[x], *first)) {
                ++offColour;
            }
        }
    }
    // Greys alone, or (nearly) every pixel in the first one's colour.
    return coloured * 10 <= opaque || offColour * 20 <= opaque;
}

} // namespace

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
    if (isOneColour(tinted.toImage())) {
        QPainter painter(&tinted);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(tinted.rect(), color);
    }
    tinted.setDevicePixelRatio(devicePixelRatio);
    QPixmapCache::insert(key, tinted);
    return tinted;
}

QIcon TintedIcon::ink(std::string_view symbol, const QWidget& widget, int size) {
    return QIcon(pixmap(symbol, size, widget.palette().color(QPalette::ButtonText),
                        widget.devicePixelRatioF()));
}

} // namespace vorlane
