// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RenewalRowDelegate.h"

#include "QtText.h"
#include "components/CapsuleBadge.h"
#include "components/ListRole.h"
#include "components/PaletteColor.h"
#include "components/SectionHeader.h"
#include "components/TintedIcon.h"
#include "screens/RenewalListModel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace vorlane {

namespace {

constexpr int margin = 12;
constexpr int gap = 10;
constexpr int tileSize = 32;
constexpr int iconSize = 18;
constexpr int chevronSize = 14;
constexpr int buttonHeight = 26;

const RenewalListModel* renewalModel(const QModelIndex& index) {
    return qobject_cast<const RenewalListModel*>(index.model());
}

// The widest expiration badge, so that the kinds and titles after it line up in one column.
int badgeColumnWidth(const QFont& font) {
    int widest = 0;
    for (std::size_t state = 0; state < ExpirationState::caseCount; ++state) {
        const auto value = static_cast<ExpirationState::Value>(state);
        widest = std::max(widest, CapsuleBadge::sizeFor(
                                      toQString(ExpirationState(value).displayName()), font, true)
                                      .width());
    }
    return widest;
}

QFont buttonFont(const QFont& base) {
    return CapsuleBadge::font(base);
}

void paintHeader(QPainter& painter, const QStyleOptionViewItem& option,
                 const RenewalScreen::Band& band) {
    SectionHeader::paint(painter, option.rect, toQString(band.title), band.count, option.palette,
                         option.font);
    if (band.totalCostText.empty() && band.dueText.empty()) {
        return;
    }
    // The total on the title's line, at the right.
    QFont bold = option.font;
    bold.setWeight(QFont::DemiBold);
    const QFontMetrics metrics(bold);
    const QRect line(option.rect.left() + margin, option.rect.bottom() - 6 - metrics.height(),
                     option.rect.width() - 2 * margin, metrics.height());
    painter.save();
    painter.setFont(bold);
    painter.setPen(option.palette.color(QPalette::PlaceholderText));
    // The monthly total as always, and beside it what falls due in the band.
    QString trailing = toQString(band.totalCostText);
    if (!band.dueText.empty()) {
        trailing +=
            (trailing.isEmpty() ? QString() : QStringLiteral(" \u00B7 ")) + toQString(band.dueText);
    }
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, trailing);
    painter.restore();
}

} // namespace

QRect RenewalRowDelegate::buttonRect(const QStyleOptionViewItem& option) {
    const QFontMetrics metrics(buttonFont(option.font));
    const int width = metrics.horizontalAdvance(toQString(RenewalScreen::markRenewedTitle)) + 24;
    const int right = option.rect.right() - margin - chevronSize - gap;
    return {right - width + 1, option.rect.center().y() - buttonHeight / 2 + 1, width,
            buttonHeight};
}

void RenewalRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const RenewalListModel* model = renewalModel(index);
    if (model == nullptr) {
        return;
    }
    if (const RenewalScreen::Band* band = model->band(index)) {
        paintHeader(*painter, opt, *band);
        return;
    }
    const RenewalScreen::Row* row = model->row(index);
    if (row == nullptr) {
        return;
    }
    const QWidget* widget = opt.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    QStyleOptionViewItem background = opt;
    background.text.clear();
    background.icon = QIcon();
    style->drawControl(QStyle::CE_ItemViewItem, &background, painter, widget);

    const QPalette& palette = opt.palette;
    const bool selected = opt.state.testFlag(QStyle::State_Selected);
    const QRect rect = opt.rect.adjusted(margin, 0, -margin, 0);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(opt.font);

    // From the left: the expiration badge, the kind's tile, the title.
    const QString badgeText = toQString(row->expiration.displayName());
    const QSize badgeSize = CapsuleBadge::sizeFor(badgeText, opt.font, true);
    const QRect badge(rect.left(), rect.center().y() - badgeSize.height() / 2 + 1,
                      badgeSize.width(), badgeSize.height());
    CapsuleBadge::paint(*painter, badge, badgeText, row->expiration.icon(),
                        PaletteColor::color(row->expiration.color(), palette), palette);
    const QColor tint = PaletteColor::color(row->typeTint, palette);
    const QRect tile(rect.left() + badgeColumnWidth(opt.font) + gap,
                     rect.center().y() - tileSize / 2 + 1, tileSize, tileSize);
    QPainterPath tilePath;
    tilePath.addRoundedRect(QRectF(tile), 8, 8);
    painter->fillPath(tilePath, PaletteColor::fill(tint, palette));
    painter->drawPixmap(tile.center().x() - iconSize / 2 + 1, tile.center().y() - iconSize / 2 + 1,
                        TintedIcon::pixmap(row->typeIcon, iconSize,
                                           PaletteColor::foreground(tint, palette),
                                           painter->device()->devicePixelRatioF()));

    // From the right: the chevron, the button, the days text.
    const QColor secondary =
        palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText);
    painter->drawPixmap(rect.right() - chevronSize + 1, rect.center().y() - chevronSize / 2 + 1,
                        TintedIcon::pixmap("chevron.right", chevronSize, secondary,
                                           painter->device()->devicePixelRatioF()));
    QStyleOptionButton button;
    button.rect = buttonRect(opt);
    button.text = toQString(RenewalScreen::markRenewedTitle);
    button.state = QStyle::State_Enabled | QStyle::State_Raised;
    button.palette = palette;
    button.fontMetrics = QFontMetrics(buttonFont(opt.font));
    painter->save();
    painter->setFont(buttonFont(opt.font));
    style->drawControl(QStyle::CE_PushButton, &button, painter, widget);
    painter->restore();

    QFont daysFont = opt.font;
    daysFont.setWeight(QFont::Medium);
    const QFontMetrics daysMetrics(daysFont);
    const QString days = toQString(row->daysText);
    const int daysWidth = daysMetrics.horizontalAdvance(days);
    const QRect daysRect(button.rect.left() - gap - daysWidth, rect.top(), daysWidth,
                         rect.height());
    painter->setFont(daysFont);
    painter->setPen(
        selected ? palette.color(QPalette::HighlightedText)
                 : PaletteColor::foreground(PaletteColor::color(row->daysColor, palette), palette));
    painter->drawText(daysRect, Qt::AlignRight | Qt::AlignVCenter, days);

    // What the coming period costs, left of the days.
    const QString due = toQString(row->dueText);
    const int dueWidth = due.isEmpty() ? 0 : daysMetrics.horizontalAdvance(due) + gap;
    const QRect dueRect(daysRect.left() - dueWidth, rect.top(), dueWidth, rect.height());
    painter->setPen(secondary);
    painter->drawText(dueRect.adjusted(0, 0, -gap, 0), Qt::AlignRight | Qt::AlignVCenter, due);

    QFont titleFont = opt.font;
    titleFont.setWeight(QFont::DemiBold);
    const QFontMetrics titleMetrics(titleFont);
    const QRect title(tile.right() + gap + 1, rect.top(), dueRect.left() - gap - tile.right() - gap,
                      rect.height());
    painter->setFont(titleFont);
    painter->setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(
        title, Qt::AlignLeft | Qt::AlignVCenter,
        titleMetrics.elidedText(toQString(row->title), Qt::ElideRight, title.width()));
    painter->restore();
}

QSize RenewalRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    (void)index;
    return {option.rect.width() > 0 ? option.rect.width() : 600, ListRole::rowHeight};
}

bool RenewalRowDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                     const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() == QEvent::MouseButtonRelease && renewalModel(index) != nullptr &&
        renewalModel(index)->row(index) != nullptr) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton && buttonRect(option).contains(mouse->pos())) {
            m_buttonClicked = true;
            Q_EMIT markRenewedClicked(index);
            return true;
        }
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}

bool RenewalRowDelegate::takeButtonClick() {
    return std::exchange(m_buttonClicked, false);
}

} // namespace vorlane
