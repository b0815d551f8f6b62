// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SidebarDelegate.h"

#include "components/CapsuleBadge.h"
#include "components/OrgAvatar.h"
#include "components/PaletteColor.h"
#include "screens/SidebarListModel.h"

#include <QApplication>
#include <QPainter>

namespace vorlane {

namespace {

constexpr int horizontalMargin = 8;
constexpr int iconSize = 18;
constexpr int gap = 8;
constexpr int rowHeight = 30;
constexpr int headerHeight = 30;

SidebarModel::RowKind kindOf(const QModelIndex& index) {
    return static_cast<SidebarModel::RowKind>(index.data(SidebarListModel::rowKind).toInt());
}

} // namespace

SidebarDelegate::SidebarDelegate(DataStore& store, const SidebarListModel& rows, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_store(store)
    , m_rows(rows) {}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const int height =
        kindOf(index) == SidebarModel::RowKind::sectionHeader ? headerHeight : rowHeight;
    return {option.rect.width(), height};
}

void SidebarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QPalette& palette = opt.palette;
    const QRect content = opt.rect.adjusted(horizontalMargin, 0, -horizontalMargin, 0);
    painter->save();

    const SidebarModel::RowKind kind = kindOf(index);
    if (kind == SidebarModel::RowKind::sectionHeader) {
        QFont font = opt.font;
        font.setPointSizeF(font.pointSizeF() * 0.85);
        font.setWeight(QFont::DemiBold);
        painter->setFont(font);
        painter->setPen(palette.color(QPalette::PlaceholderText));
        // Along the bottom: the space above separates the sections.
        painter->drawText(content.adjusted(0, 0, 0, -4), Qt::AlignLeft | Qt::AlignBottom, opt.text);
        painter->restore();
        return;
    }

    // The style's own selection and hover background, so the list looks like the desktop's.
    const QWidget* widget = opt.widget;
    QStyle* style = widget != nullptr ? widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &opt, painter, widget);
    const bool selected = (opt.state & QStyle::State_Selected) != 0;
    const QColor textColor = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);

    QRect textRect = content;
    if (kind == SidebarModel::RowKind::destination) {
        const QRect iconRect(content.left(), content.center().y() - iconSize / 2 + 1, iconSize,
                             iconSize);
        opt.icon.paint(painter, iconRect, Qt::AlignCenter,
                       selected ? QIcon::Selected : QIcon::Normal);
        textRect.setLeft(iconRect.right() + 1 + gap);
        const qulonglong count = index.data(SidebarListModel::badgeCount).toULongLong();
        if (count > 0) {
            painter->setFont(opt.font);
            const auto color =
                static_cast<Palette::Color>(index.data(SidebarListModel::badgeColor).toInt());
            QColor tint = PaletteColor::color(color, palette);
            QPalette onRow = palette;
            if (selected) {
                // A tint mixed into the selection's colour is a muddy capsule with a count that
                // can hardly be read (orange on blue); like the title, it takes the selection's
                // text colour, on the selection as its background.
                tint = textColor;
                onRow.setColor(QPalette::Base, palette.color(QPalette::Highlight));
                onRow.setColor(QPalette::Text, textColor);
            }
            const QRect badge = CapsuleBadge::paintRightAligned(
                *painter, content, QString::number(count), {}, tint, onRow);
            textRect.setRight(badge.left() - gap);
        }
    } else {
        const SidebarModel::Row& row = m_rows.row(index.row());
        const QRectF avatar(content.left(), content.center().y() - avatarSize / 2.0 + 1, avatarSize,
                            avatarSize);
        if (row.organization != nullptr) {
            OrgAvatar::paint(*painter, avatar, m_store, *row.organization);
        }
        textRect.setLeft(static_cast<int>(avatar.right()) + gap);
        if (row.showsExpiringDot) {
            painter->setRenderHint(QPainter::Antialiasing);
            painter->setPen(Qt::NoPen);
            painter->setBrush(PaletteColor::color(Palette::Color::orange, palette));
            const QRectF dot(content.right() - dotSize + 1,
                             content.center().y() - dotSize / 2.0 + 1, dotSize, dotSize);
            painter->drawEllipse(dot);
            textRect.setRight(static_cast<int>(dot.left()) - gap);
        }
    }

    painter->setFont(opt.font);
    painter->setPen(textColor);
    const QString text = opt.fontMetrics.elidedText(opt.text, Qt::ElideRight, textRect.width());
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter, text);
    painter->restore();
}

} // namespace vorlane
