// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ExpenseCardDelegate.h"

#include "QtText.h"
#include "components/PaletteColor.h"
#include "components/TintedIcon.h"
#include "screens/ExpenseCardGrid.h"
#include "screens/ExpenseCardModel.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace vorlane {

namespace {

constexpr int padding = 16;
constexpr int headerHeight = 24;
constexpr int headerIconSize = 20;
constexpr int lineHeight = 26;
constexpr int lineIconSize = 16;
constexpr int cornerRadius = 10;

QFont amountFont(const QFont& base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 1.4);
    font.setWeight(QFont::Bold);
    return font;
}

QFont captionFont(const QFont& base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 0.85);
    return font;
}

int amountsHeight(const QFont& base) {
    return QFontMetrics(amountFont(base)).height() + QFontMetrics(captionFont(base)).height();
}

const ExpenseScreen::Card* cardAt(const QModelIndex& index) {
    const auto* model = qobject_cast<const ExpenseCardModel*>(index.model());
    return model != nullptr ? model->card(index) : nullptr;
}

} // namespace

ExpenseCardDelegate::ExpenseCardDelegate(ExpenseCardGrid* grid)
    : QStyledItemDelegate(grid)
    , m_grid(grid) {}

QSize ExpenseCardDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    const ExpenseScreen::Card* card = cardAt(index);
    const int lines = card != nullptr ? static_cast<int>(card->services.size()) : 0;
    return {m_grid->cellWidth(), padding + headerHeight + 8 + amountsHeight(option.font) + 12 +
                                     lines * lineHeight + padding / 2 + ExpenseCardGrid::gap};
}

void ExpenseCardDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const ExpenseScreen::Card* card = cardAt(index);
    if (card == nullptr) {
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = option.palette;
    const qreal ratio = painter->device()->devicePixelRatioF();
    const QColor tint = PaletteColor::color(card->color, pal);
    const QColor tintText = PaletteColor::foreground(tint, pal);

    const QRect cardRect = option.rect.adjusted(0, 0, -ExpenseCardGrid::gap, -ExpenseCardGrid::gap);
    QPainterPath frame;
    frame.addRoundedRect(QRectF(cardRect).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                         cornerRadius);
    painter->fillPath(frame, pal.color(QPalette::Base));
    const bool current = option.state.testFlag(QStyle::State_Selected) &&
                         option.state.testFlag(QStyle::State_HasFocus);
    painter->setPen(current ? QPen(pal.color(QPalette::Highlight), 1.5)
                            : QPen(pal.color(QPalette::Mid), 1));
    painter->drawPath(frame);

    const QRect inner = cardRect.adjusted(padding, padding, -padding, -padding / 2);
    int top = inner.top();
    // Header: the group's icon in its colour and the title.
    painter->drawPixmap(inner.left(), top + (headerHeight - headerIconSize) / 2,
                        TintedIcon::pixmap(card->icon, headerIconSize, tintText, ratio));
    QFont bold = option.font;
    bold.setWeight(QFont::DemiBold);
    const QFontMetrics boldMetrics(bold);
    const int titleLeft = inner.left() + headerIconSize + 8;
    painter->setFont(bold);
    painter->setPen(pal.color(QPalette::Text));
    painter->drawText(
        QRect(titleLeft, top, inner.right() - titleLeft, headerHeight),
        Qt::AlignLeft | Qt::AlignVCenter,
        boldMetrics.elidedText(toQString(card->title), Qt::ElideRight, inner.right() - titleLeft));
    top += headerHeight + 8;

    // Amounts: monthly at the left, yearly at the right, each over its caption.
    const QFont big = amountFont(option.font);
    const QFont caption = captionFont(option.font);
    const int bigHeight = QFontMetrics(big).height();
    const int captionHeight = QFontMetrics(caption).height();
    const int half = inner.width() / 2;
    const auto amount = [&](const QString& text, const QString& label, int left, int align) {
        painter->setFont(big);
        painter->setPen(pal.color(QPalette::Text));
        painter->drawText(QRect(left, top, half, bigHeight), align | Qt::AlignVCenter, text);
        painter->setFont(caption);
        painter->setPen(pal.color(QPalette::PlaceholderText));
        painter->drawText(QRect(left, top + bigHeight, half, captionHeight),
                          align | Qt::AlignVCenter, label);
    };
    amount(toQString(card->monthlyText), QStringLiteral("Monthly"), inner.left(), Qt::AlignLeft);
    amount(toQString(card->yearlyText), QStringLiteral("Yearly"), inner.left() + half,
           Qt::AlignRight);
    top += bigHeight + captionHeight + 6;

    QColor rule = pal.color(QPalette::Text);
    rule.setAlphaF(0.12F);
    painter->setPen(QPen(rule, 1));
    painter->drawLine(inner.left(), top, inner.right(), top);
    top += 6;

    // Only the lines on view (the page scrolls the whole grid): a card may list hundreds.
    const QRect clip = m_grid->viewport()->visibleRegion().boundingRect();
    const QFontMetrics metrics(option.font);
    const QFontMetrics captionMetrics(caption);
    for (const ExpenseScreen::ServiceLine& line : card->services) {
        const QRect row(inner.left(), top, inner.width(), lineHeight);
        top += lineHeight;
        if (!clip.isNull() && !clip.intersects(row)) {
            continue;
        }
        const QColor lineTint =
            PaletteColor::foreground(PaletteColor::color(line.typeTint, pal), pal);
        painter->drawPixmap(row.left(), row.center().y() - lineIconSize / 2,
                            TintedIcon::pixmap(line.typeIcon, lineIconSize, lineTint, ratio));
        const QString cost = toQString(line.costText());
        const QString cycle = toQString(line.cycleLabel);
        const int costWidth = metrics.horizontalAdvance(cost);
        const int cycleWidth = captionMetrics.horizontalAdvance(cycle);
        const int textLeft = row.left() + lineIconSize + 8;
        const int titleWidth = std::max(0, row.right() - costWidth - cycleWidth - 20 - textLeft);
        painter->setFont(option.font);
        painter->setPen(pal.color(QPalette::Text));
        painter->drawText(QRect(textLeft, row.top(), titleWidth, lineHeight),
                          Qt::AlignLeft | Qt::AlignVCenter,
                          metrics.elidedText(toQString(line.title), Qt::ElideRight, titleWidth));
        painter->drawText(QRect(row.right() - costWidth, row.top(), costWidth, lineHeight),
                          Qt::AlignRight | Qt::AlignVCenter, cost);
        painter->setFont(caption);
        painter->setPen(pal.color(QPalette::PlaceholderText));
        painter->drawText(
            QRect(row.right() - costWidth - 12 - cycleWidth, row.top(), cycleWidth, lineHeight),
            Qt::AlignRight | Qt::AlignVCenter, cycle);
    }
    painter->restore();
}

} // namespace vorlane
