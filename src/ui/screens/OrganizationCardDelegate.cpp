// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationCardDelegate.h"

#include "QtText.h"
#include "components/CapsuleBadge.h"
#include "components/OrgAvatar.h"
#include "components/PaletteColor.h"
#include "components/TintedIcon.h"
#include "screens/OrganizationGridScreen.h"

#include <QAbstractItemView>
#include <QEasingCurve>
#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>

#include <cmath>

namespace vorlane {

namespace {

constexpr int padding = 16;
constexpr int avatarSize = 56;
constexpr qreal cornerRadius = 12;
constexpr int flipMilliseconds = 500;

QFont scaledFont(const QFont& base, qreal factor, QFont::Weight weight) {
    QFont font = base;
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(qMax(8, qRound(font.pixelSize() * factor)));
    }
    font.setWeight(weight);
    return font;
}

// A spring with a response of about half a second that settles after one small overshoot.
QEasingCurve springCurve() {
    QEasingCurve curve(QEasingCurve::OutBack);
    curve.setOvershoot(1.2);
    return curve;
}

} // namespace

OrganizationCardDelegate::OrganizationCardDelegate(const OrganizationGridScreen& screen,
                                                   DataStore& store, QAbstractItemView& view)
    : QStyledItemDelegate(&view)
    , m_screen(screen)
    , m_store(store)
    , m_view(view) {}

void OrganizationCardDelegate::setFlipped(Organization* organization, bool flipped) {
    Flip& flip = m_flips[organization];
    if (flip.flipped == flipped) {
        return;
    }
    flip.flipped = flipped;
    delete flip.animation.data();
    auto* animation = new QVariantAnimation(this);
    animation->setStartValue(flip.progress);
    animation->setEndValue(flipped ? 1.0 : 0.0);
    animation->setDuration(flipMilliseconds);
    animation->setEasingCurve(springCurve());
    connect(animation, &QVariantAnimation::valueChanged, this,
            [this, organization](const QVariant& value) {
                auto found = m_flips.find(organization);
                if (found != m_flips.end()) {
                    found->progress = value.toReal();
                    m_view.viewport()->update();
                }
            });
    flip.animation = animation;
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

qreal OrganizationCardDelegate::flipProgress(Organization* organization) const {
    const auto found = m_flips.constFind(organization);
    return found == m_flips.constEnd() ? 0.0 : found->progress;
}

void OrganizationCardDelegate::keepOnly(const QList<Organization*>& shown) {
    for (auto it = m_flips.begin(); it != m_flips.end();) {
        if (shown.contains(it.key())) {
            ++it;
        } else {
            delete it->animation.data();
            it = m_flips.erase(it);
        }
    }
}

QSize OrganizationCardDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {m_cardWidth, cardHeight};
}

void OrganizationCardDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
    const int row = index.row();
    if (row < 0 || static_cast<std::size_t>(row) >= m_screen.cards().size()) {
        return;
    }
    const auto& card = m_screen.cards()[static_cast<std::size_t>(row)];
    const QRect rect = option.rect.adjusted(1, 1, -1, -1);
    const qreal angle = flipProgress(card.organization) * 180.0;
    const bool backVisible = angle > 90.0;
    // The face that looks at the viewer fades out as it turns edge-on, so the hidden face is
    // fully transparent.
    const qreal opacity = std::abs(std::cos(qDegreesToRadians(angle)));

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QTransform turn;
    turn.translate(rect.center().x(), rect.center().y());
    turn.rotate(backVisible ? angle - 180.0 : angle, Qt::YAxis);
    turn.translate(-rect.center().x(), -rect.center().y());
    painter->setTransform(turn, true);
    painter->setOpacity(opacity);

    const QPalette& palette = option.palette;
    QColor border = PaletteColor::color(card.avatarColor, palette);
    border.setAlphaF(0.45F);
    const bool focused = option.state.testFlag(QStyle::State_HasFocus) ||
                         option.state.testFlag(QStyle::State_Selected);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect), cornerRadius, cornerRadius);
    painter->fillPath(shape, palette.color(QPalette::Base));
    painter->setPen(
        QPen(focused ? palette.color(QPalette::Highlight) : border, focused ? 2.0 : 1.5));
    painter->drawPath(shape);

    if (backVisible) {
        paintBack(*painter, rect, option, row);
    } else {
        paintFront(*painter, rect, option, row);
    }
    painter->restore();
}

void OrganizationCardDelegate::paintFront(QPainter& painter, const QRect& rect,
                                          const QStyleOptionViewItem& option, int row) const {
    const auto& card = m_screen.cards()[static_cast<std::size_t>(row)];
    const QPalette& palette = option.palette;
    const qreal dpr = painter.device()->devicePixelRatioF();
    const QRect inner = rect.adjusted(padding, padding, -padding, -padding);

    const QRectF avatar(inner.center().x() - avatarSize / 2.0, inner.top() + 4, avatarSize,
                        avatarSize);
    OrgAvatar::paint(painter, avatar, m_store, *card.organization);

    const QFont nameFont = scaledFont(option.font, 1.1, QFont::DemiBold);
    const QFont captionFont = scaledFont(option.font, 0.9, QFont::Normal);
    int y = static_cast<int>(avatar.bottom()) + 10;
    painter.setFont(nameFont);
    painter.setPen(palette.color(QPalette::Text));
    const int nameHeight = QFontMetrics(nameFont).height();
    painter.drawText(
        QRect(inner.left(), y, inner.width(), nameHeight), Qt::AlignCenter,
        QFontMetrics(nameFont).elidedText(toQString(card.name), Qt::ElideRight, inner.width()));
    y += nameHeight + 2;
    const int captionHeight = QFontMetrics(captionFont).height();
    if (!card.projectName.empty()) {
        painter.setFont(captionFont);
        painter.setPen(PaletteColor::color(Palette::Color::secondary, palette));
        painter.drawText(
            QRect(inner.left(), y, inner.width(), captionHeight), Qt::AlignCenter,
            QFontMetrics(captionFont)
                .elidedText(toQString(card.projectName), Qt::ElideRight, inner.width()));
    }

    // The badges, centred along the bottom: favourite star, expiring count, services.
    const QFont badgeFont = CapsuleBadge::font(option.font);
    const QString services = toQString(card.servicesText);
    const QString expiring = QString::number(card.expiringCount);
    const QSize servicesSize = CapsuleBadge::sizeFor(services, badgeFont, false);
    const QSize expiringSize = CapsuleBadge::sizeFor(expiring, badgeFont, true);
    const int starSize = servicesSize.height();
    const int gap = 6;
    int width = servicesSize.width();
    width += card.isFavorite ? starSize + gap : 0;
    width += card.expiringCount > 0 ? expiringSize.width() + gap : 0;
    int x = inner.center().x() - width / 2;
    const int badgeTop = inner.bottom() - servicesSize.height();
    painter.setFont(badgeFont);
    if (card.isFavorite) {
        const QColor yellow =
            PaletteColor::foreground(PaletteColor::color(Palette::Color::yellow, palette), palette);
        painter.drawPixmap(QRect(x, badgeTop, starSize, starSize),
                           TintedIcon::pixmap("star.fill", starSize, yellow, dpr));
        x += starSize + gap;
    }
    if (card.expiringCount > 0) {
        CapsuleBadge::paint(painter, QRect(QPoint(x, badgeTop), expiringSize), expiring,
                            "exclamationmark.triangle.fill",
                            PaletteColor::color(Palette::Color::orange, palette), palette);
        x += expiringSize.width() + gap;
    }
    CapsuleBadge::paint(painter, QRect(QPoint(x, badgeTop), servicesSize), services, {},
                        PaletteColor::color(Palette::Color::secondary, palette), palette);
}

void OrganizationCardDelegate::paintBack(QPainter& painter, const QRect& rect,
                                         const QStyleOptionViewItem& option, int row) const {
    const auto& card = m_screen.cards()[static_cast<std::size_t>(row)];
    const QPalette& palette = option.palette;
    const qreal dpr = painter.device()->devicePixelRatioF();
    const QRect inner = rect.adjusted(padding, padding - 2, -padding, -padding);

    const QFont nameFont = scaledFont(option.font, 1.0, QFont::DemiBold);
    const int nameHeight = QFontMetrics(nameFont).height();
    const int dot = 8;
    painter.setFont(nameFont);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawText(QRect(inner.left(), inner.top(), inner.width() - dot - 8, nameHeight),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(nameFont).elidedText(toQString(card.name), Qt::ElideRight,
                                                       inner.width() - dot - 8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(PaletteColor::color(card.activeDotColor, palette));
    painter.drawEllipse(
        QRectF(inner.right() - dot, inner.top() + (nameHeight - dot) / 2.0, dot, dot));

    const QFont rowFont = scaledFont(option.font, 0.95, QFont::Normal);
    const QFont valueFont = scaledFont(option.font, 0.95, QFont::DemiBold);
    const int rowHeight = 24;
    const int iconSize = 16;
    int y = inner.top() + nameHeight + 10;
    for (const auto& summary : card.summary) {
        const QColor tint =
            PaletteColor::foreground(PaletteColor::color(summary.color, palette), palette);
        painter.drawPixmap(QRect(inner.left(), y + (rowHeight - iconSize) / 2, iconSize, iconSize),
                           TintedIcon::pixmap(summary.icon, iconSize, tint, dpr));
        painter.setFont(rowFont);
        painter.setPen(palette.color(QPalette::Text));
        const QRect line(inner.left() + iconSize + 8, y, inner.width() - iconSize - 8, rowHeight);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, toQString(summary.label));
        painter.setFont(valueFont);
        painter.setPen(tint);
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, toQString(summary.value));
        y += rowHeight;
    }

    if (!card.nextExpirationText.empty()) {
        const QFont captionFont = scaledFont(option.font, 0.9, QFont::Normal);
        const QColor secondary = PaletteColor::color(Palette::Color::secondary, palette);
        const int height = QFontMetrics(captionFont).height();
        const int top = inner.bottom() - height;
        painter.drawPixmap(QRect(inner.left(), top + (height - 14) / 2, 14, 14),
                           TintedIcon::pixmap("calendar.badge.clock", 14, secondary, dpr));
        painter.setFont(captionFont);
        painter.setPen(secondary);
        painter.drawText(QRect(inner.left() + 20, top, inner.width() - 20, height),
                         Qt::AlignLeft | Qt::AlignVCenter, toQString(card.nextExpirationText));
    }
}

} // namespace vorlane
