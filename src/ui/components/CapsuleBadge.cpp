// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/CapsuleBadge.h"

#include "components/PaletteColor.h"
#include "components/TintedIcon.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace vorlane {

namespace {

constexpr int horizontalPadding = 8;
constexpr int verticalPadding = 2;
constexpr int symbolGap = 4;

} // namespace

QFont CapsuleBadge::font(const QFont& base) {
    QFont small = base;
    if (base.pointSizeF() > 0) {
        small.setPointSizeF(base.pointSizeF() * 0.85);
    } else {
        small.setPixelSize(qMax(8, base.pixelSize() * 85 / 100));
    }
    small.setWeight(QFont::Medium);
    return small;
}

QSize CapsuleBadge::sizeFor(const QString& text, const QFont& font, bool withSymbol) {
    const QFontMetrics metrics(CapsuleBadge::font(font));
    const int height = metrics.height() + 2 * verticalPadding;
    int width = metrics.horizontalAdvance(text) + 2 * horizontalPadding;
    if (withSymbol) {
        width += metrics.height() + symbolGap;
    }
    return {width, height};
}

QRect CapsuleBadge::paintRightAligned(QPainter& painter, const QRect& rect, const QString& text,
                                      std::string_view symbol, const QColor& tint,
                                      const QPalette& palette) {
    const QSize size = sizeFor(text, painter.font(), !symbol.empty());
    const QRect capsule(rect.right() - size.width() + 1, rect.center().y() - size.height() / 2,
                        size.width(), size.height());
    paint(painter, capsule, text, symbol, tint, palette);
    return capsule;
}

void CapsuleBadge::paint(QPainter& painter, const QRect& rect, const QString& text,
                         std::string_view symbol, const QColor& tint, const QPalette& palette) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QFont small = font(painter.font());
    QPainterPath path;
    const qreal radius = rect.height() / 2.0;
    path.addRoundedRect(QRectF(rect), radius, radius);
    painter.fillPath(path, PaletteColor::fill(tint, palette));

    const QColor foreground = PaletteColor::foreground(tint, palette);
    QRect content = rect.adjusted(horizontalPadding, 0, -horizontalPadding, 0);
    if (!symbol.empty()) {
        const int side = QFontMetrics(small).height();
        const QPixmap icon =
            TintedIcon::pixmap(symbol, side, foreground, painter.device()->devicePixelRatioF());
        painter.drawPixmap(QPoint(content.left(), rect.center().y() - side / 2 + 1), icon);
        content.setLeft(content.left() + side + symbolGap);
    }
    painter.setFont(small);
    painter.setPen(foreground);
    painter.drawText(content, Qt::AlignVCenter | Qt::AlignLeft, text);
    painter.restore();
}

} // namespace vorlane
