// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ServiceRowDelegate.h"

#include "QtText.h"
#include "components/CapsuleBadge.h"
#include "components/ListRole.h"
#include "components/PaletteColor.h"
#include "components/RowVariant.h"
#include "components/TintedIcon.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>

namespace vorlane {

namespace {

constexpr int margin = 12;
constexpr int tileSize = 32;
constexpr int iconSize = 18;
constexpr int gap = 10;
constexpr int badgeGap = 6;

} // namespace

void ServiceRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    paintRow(*painter, opt, index.data(ListRole::serviceRow).value<ServiceRow>());
}

QSize ServiceRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                   const QModelIndex& /*index*/) const {
    // Rows take the view's width; asking for none keeps a horizontal scroll bar away.
    return {1, ListRole::rowHeight};
}

void ServiceRowDelegate::paintRow(QPainter& painter, const QStyleOptionViewItem& option,
                                  const ServiceRow& row) {
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    // The style's own selection and hover background, without its text or icon.
    QStyleOptionViewItem background = option;
    background.text.clear();
    background.icon = QIcon();
    style->drawControl(QStyle::CE_ItemViewItem, &background, &painter, widget);

    const QPalette& palette = option.palette;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QRect rect = option.rect.adjusted(margin, 0, -margin, 0);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);

    // Kind tile.
    const QColor tint = PaletteColor::color(row.typeTint, palette);
    const QRect tile(rect.left(), rect.center().y() - tileSize / 2 + 1, tileSize, tileSize);
    QPainterPath tilePath;
    tilePath.addRoundedRect(QRectF(tile), 8, 8);
    painter.fillPath(tilePath, PaletteColor::fill(tint, palette));
    const QPixmap icon =
        TintedIcon::pixmap(row.typeIcon, iconSize, PaletteColor::foreground(tint, palette),
                           painter.device()->devicePixelRatioF());
    painter.drawPixmap(tile.center().x() - iconSize / 2 + 1, tile.center().y() - iconSize / 2 + 1,
                       icon);

    // Badges from the right: expiration, then status.
    painter.setFont(option.font);
    const ExpirationState expiration = row.expiration;
    const QRect expirationRect = CapsuleBadge::paintRightAligned(
        painter, rect, toQString(expiration.displayName()), expiration.icon(),
        PaletteColor::color(expiration.color(), palette), palette);
    QRect remaining = rect;
    remaining.setRight(expirationRect.left() - badgeGap);
    const QRect statusRect =
        CapsuleBadge::paintRightAligned(painter, remaining, toQString(row.status.displayName()), {},
                                        PaletteColor::color(row.status.color(), palette), palette);

    // Title and subtitle between the tile and the badges.
    QRect text(tile.right() + gap + 1, rect.top(), 0, rect.height());
    text.setRight(statusRect.left() - gap);
    QFont titleFont = option.font;
    titleFont.setWeight(QFont::DemiBold);
    const QFontMetrics titleMetrics(titleFont);
    const QFontMetrics subtitleMetrics(option.font);
    const int block = titleMetrics.height() + subtitleMetrics.height();
    const int top = rect.center().y() - block / 2 + 1;
    const QColor textColor = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    QColor secondary = selected ? textColor : palette.color(QPalette::PlaceholderText);
    painter.setFont(titleFont);
    painter.setPen(textColor);
    painter.drawText(QRect(text.left(), top, text.width(), titleMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     titleMetrics.elidedText(toQString(row.title), Qt::ElideRight, text.width()));
    painter.setFont(option.font);
    painter.setPen(secondary);
    painter.drawText(
        QRect(text.left(), top + titleMetrics.height(), text.width(), subtitleMetrics.height()),
        Qt::AlignLeft | Qt::AlignVCenter,
        subtitleMetrics.elidedText(toQString(row.subtitle), Qt::ElideRight, text.width()));
    painter.restore();
}

} // namespace vorlane
