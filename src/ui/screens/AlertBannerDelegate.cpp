// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/AlertBannerDelegate.h"

#include "QtText.h"
#include "components/PaletteColor.h"
#include "components/TintedIcon.h"
#include "screens/AlertListModel.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <string_view>

namespace vorlane {

namespace {

constexpr int verticalInset = 3;
constexpr int padding = 12;
constexpr int iconSize = 20;
constexpr int chevronSize = 14;

// The two octagon symbols of the urgent levels have no Breeze icon that survives recolouring
// (their counterparts are solid shapes), so the banner paints them: an octagon in the level's
// colour with the mark knocked out in the base colour.
bool paintOctagonMark(QPainter& painter, std::string_view symbol, const QRectF& box,
                      const QColor& color, const QPalette& palette, const QFont& font) {
    QString mark;
    if (symbol == "xmark.octagon") {
        mark = QStringLiteral("\u00D7");
    } else if (symbol == "exclamationmark.octagon") {
        mark = QStringLiteral("!");
    } else {
        return false;
    }
    QPolygonF octagon;
    const QPointF centre = box.center();
    const double radius = box.width() / 2;
    for (int corner = 0; corner < 8; ++corner) {
        const double angle = (22.5 + 45.0 * corner) * 3.14159265358979 / 180.0;
        octagon << centre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(octagon);
    QFont bold = font;
    bold.setWeight(QFont::Black);
    bold.setPixelSize(static_cast<int>(box.height() * 0.75));
    painter.setFont(bold);
    painter.setPen(palette.color(QPalette::Base));
    painter.drawText(box, Qt::AlignCenter, mark);
    return true;
}

} // namespace

QSize AlertBannerDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    (void)index;
    return {option.rect.width(), AlertListModel::rowHeight};
}

void AlertBannerDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const auto* model = qobject_cast<const AlertListModel*>(index.model());
    const DashboardScreen::Alert* alert = model != nullptr ? model->alert(index) : nullptr;
    if (alert == nullptr) {
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = option.palette;
    const QColor tint = PaletteColor::color(alert->level.color(), pal);
    const QColor foreground = PaletteColor::foreground(tint, pal);
    const QRectF band =
        QRectF(option.rect).adjusted(0.5, verticalInset + 0.5, -0.5, -verticalInset - 0.5);
    QPainterPath path;
    path.addRoundedRect(band, 8, 8);
    painter->fillPath(path, PaletteColor::fill(tint, pal));
    const bool marked = option.state.testFlag(QStyle::State_MouseOver) ||
                        (option.state.testFlag(QStyle::State_HasFocus) &&
                         option.state.testFlag(QStyle::State_Selected));
    QColor border = foreground;
    border.setAlphaF(marked ? 0.9F : 0.3F);
    painter->setPen(QPen(border, marked ? 1.5 : 1.0));
    painter->drawPath(path);

    const int centreY = option.rect.center().y();
    const qreal ratio = painter->device()->devicePixelRatioF();
    int left = option.rect.left() + padding;
    if (!paintOctagonMark(*painter, alert->level.icon(),
                          QRectF(left, centreY - iconSize / 2.0, iconSize, iconSize), foreground,
                          pal, option.font)) {
        painter->drawPixmap(left, centreY - iconSize / 2,
                            TintedIcon::pixmap(alert->level.icon(), iconSize, foreground, ratio));
    }
    left += iconSize + 10;
    const int right = option.rect.right() - padding - chevronSize - 8;
    painter->drawPixmap(option.rect.right() - padding - chevronSize, centreY - chevronSize / 2,
                        TintedIcon::pixmap("chevron.right", chevronSize,
                                           pal.color(QPalette::PlaceholderText), ratio));

    QFont bold = option.font;
    bold.setWeight(QFont::DemiBold);
    const QFontMetrics boldMetrics(bold);
    const QFontMetrics metrics(option.font);
    const QString message = toQString(alert->message);
    const int messageWidth = metrics.horizontalAdvance(message);
    const int titleWidth = std::max(0, right - left - messageWidth - 16);
    painter->setFont(bold);
    painter->setPen(pal.color(QPalette::Text));
    painter->drawText(QRect(left, option.rect.top(), titleWidth, option.rect.height()),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      boldMetrics.elidedText(toQString(alert->title), Qt::ElideRight, titleWidth));
    painter->setFont(option.font);
    painter->setPen(foreground);
    painter->drawText(
        QRect(right - messageWidth, option.rect.top(), messageWidth, option.rect.height()),
        Qt::AlignRight | Qt::AlignVCenter, message);
    painter->restore();
}

} // namespace vorlane
