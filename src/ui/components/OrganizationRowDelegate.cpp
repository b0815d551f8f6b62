// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/OrganizationRowDelegate.h"

#include "QtText.h"
#include "components/ListRole.h"
#include "components/OrgAvatar.h"
#include "components/RowVariant.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace vorlane {

namespace {

constexpr int outerMargin = 8;
constexpr int verticalInset = 2;
constexpr int horizontalPadding = 16;
constexpr int verticalPadding = 10;
constexpr int spacing = 12;

} // namespace

void OrganizationRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    paintRow(*painter, opt, index.data(ListRole::organizationRow).value<OrganizationRow>(),
             index.data(ListRole::logo).value<QImage>());
}

QSize OrganizationRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                        const QModelIndex& /*index*/) const {
    // Rows take the view's width; asking for none keeps a horizontal scroll bar away.
    return {1, ListRole::rowHeight};
}

void OrganizationRowDelegate::paintRow(QPainter& painter, const QStyleOptionViewItem& option,
                                       const OrganizationRow& row, const QImage& logo) {
    const QPalette& palette = option.palette;
    const QRect card =
        option.rect.adjusted(outerMargin, verticalInset, -outerMargin, -verticalInset);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);

    // Translucent over whatever the list's background is, so it reads in light and dark themes;
    // stronger under the selection or the pointer.
    QColor fill = palette.color(QPalette::Text);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
    fill.setAlphaF(selected ? 0.16F : hovered ? 0.10F : 0.05F);
    QPainterPath path;
    path.addRoundedRect(QRectF(card), 8, 8);
    painter.fillPath(path, fill);
    if (selected && option.state.testFlag(QStyle::State_HasFocus)) {
        painter.setPen(QPen(palette.color(QPalette::Highlight), 1.5));
        painter.drawPath(path);
    }

    const QRect content =
        card.adjusted(horizontalPadding, verticalPadding, -horizontalPadding, -verticalPadding);
    // The two text lines need a little more than the padded height; the avatar matches them.
    constexpr int side = 32;
    const QRectF avatar(content.left(), card.center().y() - side / 2.0 + 0.5, side, side);
    OrgAvatar::paint(painter, avatar, logo, toQString(row.initials), row.avatarColor);

    const QColor secondary = palette.color(QPalette::PlaceholderText);
    const QFontMetrics metrics(option.font);
    const QString count = toQString(row.servicesText);
    const int countWidth = metrics.horizontalAdvance(count);
    painter.setFont(option.font);
    painter.setPen(secondary);
    painter.drawText(QRect(content.right() - countWidth, card.top(), countWidth + 1, card.height()),
                     Qt::AlignVCenter | Qt::AlignRight, count);

    QRect text(qRound(avatar.right()) + spacing, card.top(), 0, card.height());
    text.setRight(content.right() - countWidth - spacing);
    QFont nameFont = option.font;
    nameFont.setWeight(QFont::DemiBold);
    const QFontMetrics nameMetrics(nameFont);
    const QString name = nameMetrics.elidedText(toQString(row.name), Qt::ElideRight, text.width());
    painter.setPen(palette.color(QPalette::Text));
    painter.setFont(nameFont);
    if (row.projectName.empty()) {
        painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft, name);
    } else {
        const int block = nameMetrics.height() + metrics.height();
        const int top = card.center().y() - block / 2 + 1;
        painter.drawText(QRect(text.left(), top, text.width(), nameMetrics.height()),
                         Qt::AlignVCenter | Qt::AlignLeft, name);
        painter.setFont(option.font);
        painter.setPen(secondary);
        painter.drawText(
            QRect(text.left(), top + nameMetrics.height(), text.width(), metrics.height()),
            Qt::AlignVCenter | Qt::AlignLeft,
            metrics.elidedText(toQString(row.projectName), Qt::ElideRight, text.width()));
    }
    painter.restore();
}

} // namespace vorlane
