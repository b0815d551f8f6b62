// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/DetailRowDelegate.h"

#include "components/CapsuleBadge.h"
#include "components/ListRole.h"
#include "components/PaletteColor.h"
#include "components/SectionHeader.h"
#include "components/TintedIcon.h"
#include "screens/DetailRowModel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

namespace vorlane {

namespace {

constexpr int margin = 12;
constexpr int iconSize = 22;

const DetailRowModel::Row* rowOf(const QModelIndex& index) {
    const auto* model = qobject_cast<const DetailRowModel*>(index.model());
    return model != nullptr ? model->row(index) : nullptr;
}

QFont smaller(const QFont& base) {
    QFont font = base;
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * 0.9);
    }
    return font;
}

} // namespace

QSize DetailRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {option.rect.width() > 0 ? option.rect.width() : 400, ListRole::rowHeight};
}

QRect DetailRowDelegate::actionRect(const QStyleOptionViewItem& option, const QModelIndex& index) {
    const DetailRowModel::Row* row = rowOf(index);
    if (row == nullptr || row->isHeader || row->actionTitle.isEmpty()) {
        return {};
    }
    const int width = option.fontMetrics.horizontalAdvance(row->actionTitle) + 24;
    const int height = option.fontMetrics.height() + 10;
    return {option.rect.right() - margin - width, option.rect.center().y() - height / 2, width,
            height};
}

void DetailRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    const DetailRowModel::Row* row = rowOf(index);
    if (row == nullptr) {
        return;
    }
    const QPalette& palette = option.palette;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (row->isHeader) {
        // A header is a disabled item, so its option carries the disabled colours; a header is
        // not greyed out.
        QPalette headerPalette = palette;
        headerPalette.setCurrentColorGroup(QPalette::Active);
        SectionHeader::paint(*painter, option.rect.adjusted(margin, 0, -margin, 0), row->title,
                             row->count, headerPalette, option.font);
        if (!row->trailing.isEmpty()) {
            painter->setFont(option.font);
            painter->setPen(PaletteColor::color(row->trailingColor, headerPalette));
            painter->drawText(option.rect.adjusted(margin, 0, -margin, -6),
                              Qt::AlignRight | Qt::AlignBottom, row->trailing);
        }
        painter->restore();
        return;
    }

    QStyleOptionViewItem background = option;
    background.text.clear();
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter,
                                         option.widget);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QColor text = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor secondary =
        selected ? text : PaletteColor::color(Palette::Color::secondary, palette);
    const qreal dpr = painter->device()->devicePixelRatioF();

    QRect rest = option.rect.adjusted(margin, 0, -margin, 0);
    const QRect iconRect(rest.left(), rest.center().y() - iconSize / 2, iconSize, iconSize);
    if (!row->icon.empty()) {
        const QColor tint =
            PaletteColor::foreground(PaletteColor::color(row->tint, palette), palette);
        painter->drawPixmap(iconRect, TintedIcon::pixmap(row->icon, iconSize, tint, dpr));
    }
    rest.setLeft(iconRect.right() + margin);

    // Right to left: action button, trailing text, badge.
    const QRect action = actionRect(option, index);
    if (!action.isNull()) {
        QStyleOptionButton button;
        button.rect = action;
        button.text = row->actionTitle;
        button.palette = palette;
        button.state = QStyle::State_Enabled | QStyle::State_Raised;
        QApplication::style()->drawControl(QStyle::CE_PushButton, &button, painter, option.widget);
        rest.setRight(action.left() - margin);
    }
    if (!row->trailing.isEmpty()) {
        const int width = option.fontMetrics.horizontalAdvance(row->trailing);
        painter->setFont(option.font);
        painter->setPen(selected ? text
                                 : PaletteColor::foreground(
                                       PaletteColor::color(row->trailingColor, palette), palette));
        painter->drawText(QRect(rest.right() - width, rest.top(), width, rest.height()),
                          Qt::AlignRight | Qt::AlignVCenter, row->trailing);
        rest.setRight(rest.right() - width - margin);
    }
    if (!row->badge.isEmpty()) {
        const QRect badge =
            CapsuleBadge::paintRightAligned(*painter, rest, row->badge, row->badgeIcon,
                                            PaletteColor::color(row->badgeColor, palette), palette);
        rest.setRight(badge.left() - margin);
    }

    const QFont titleFont = option.font;
    const QFont subtitleFont = smaller(option.font);
    const int titleHeight = QFontMetrics(titleFont).height();
    const int subtitleHeight = QFontMetrics(subtitleFont).height();
    const int top = rest.center().y() - (titleHeight + subtitleHeight) / 2;
    painter->setFont(titleFont);
    painter->setPen(text);
    painter->drawText(QRect(rest.left(), top, rest.width(), titleHeight),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      QFontMetrics(titleFont).elidedText(row->title, Qt::ElideRight, rest.width()));
    painter->setFont(subtitleFont);
    painter->setPen(secondary);
    painter->drawText(
        QRect(rest.left(), top + titleHeight, rest.width(), subtitleHeight),
        Qt::AlignLeft | Qt::AlignVCenter,
        QFontMetrics(subtitleFont).elidedText(row->subtitle, Qt::ElideRight, rest.width()));
    painter->restore();
}

bool DetailRowDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                    const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton &&
            actionRect(option, index).contains(mouse->position().toPoint())) {
            Q_EMIT actionClicked(index);
            return true;
        }
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}

} // namespace vorlane
