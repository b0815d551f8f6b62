// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/StatCardView.h"

#include "QtText.h"
#include "components/PaletteColor.h"
#include "components/TintedIcon.h"

#include <QPainter>
#include <QPainterPath>

#include <utility>

namespace vorlane {

namespace {

constexpr int padding = 16;
constexpr int iconSize = 22;
constexpr int cornerRadius = 10;

QFont valueFont(const QFont& base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 1.8);
    font.setWeight(QFont::Bold);
    return font;
}

} // namespace

StatCardView::StatCardView(StatCard card, QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCard(std::move(card));
}

void StatCardView::setCard(StatCard card) {
    m_card = std::move(card);
    setAccessibleName(toQString(m_card.accessibleText()));
    updateGeometry();
    update();
}

QSize StatCardView::sizeHint() const {
    const QFontMetrics value(valueFont(font()));
    const QFontMetrics title(font());
    const int width = qMax(value.horizontalAdvance(toQString(m_card.value)),
                           title.horizontalAdvance(toQString(m_card.title)));
    return {qMax(160, width + 2 * padding),
            2 * padding + iconSize + 8 + value.height() + title.height()};
}

QSize StatCardView::minimumSizeHint() const {
    return {120, sizeHint().height()};
}

void StatCardView::paintEvent(QPaintEvent* event) {
    (void)event;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = palette();
    const QRectF card = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath path;
    path.addRoundedRect(card, cornerRadius, cornerRadius);
    painter.fillPath(path, pal.color(QPalette::Base));
    const QColor tint = PaletteColor::color(m_card.color, pal);
    QColor border = tint;
    border.setAlphaF(0.35F);
    painter.setPen(QPen(border, 1));
    painter.drawPath(path);

    painter.drawPixmap(padding, padding,
                       TintedIcon::pixmap(m_card.icon, iconSize,
                                          PaletteColor::foreground(tint, pal),
                                          devicePixelRatioF()));
    const QFont big = valueFont(font());
    const QFontMetrics bigMetrics(big);
    const QFontMetrics smallMetrics(font());
    const int valueTop = padding + iconSize + 8;
    const int textWidth = width() - 2 * padding;
    painter.setFont(big);
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(QRect(padding, valueTop, textWidth, bigMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     bigMetrics.elidedText(toQString(m_card.value), Qt::ElideRight, textWidth));
    painter.setFont(font());
    painter.setPen(pal.color(QPalette::PlaceholderText));
    painter.drawText(
        QRect(padding, valueTop + bigMetrics.height(), textWidth, smallMetrics.height()),
        Qt::AlignLeft | Qt::AlignVCenter,
        smallMetrics.elidedText(toQString(m_card.title), Qt::ElideRight, textWidth));
}

} // namespace vorlane
