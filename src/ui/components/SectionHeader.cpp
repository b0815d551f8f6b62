// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/SectionHeader.h"

#include "components/CapsuleBadge.h"
#include "components/PaletteColor.h"

#include <QPainter>

namespace vorlane {

namespace {

QFont titleFont(const QFont& base) {
    QFont font = base;
    font.setWeight(QFont::Bold);
    return font;
}

constexpr int bottomPadding = 6;
constexpr int leftPadding = 12;
constexpr int countGap = 8;

} // namespace

SectionHeader::SectionHeader(const QString& title, int count, QWidget* parent)
    : QWidget(parent)
    , m_title(title)
    , m_count(count) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    updateAccessibleName();
}

void SectionHeader::setTitle(const QString& title) {
    m_title = title;
    updateAccessibleName();
    update();
}

void SectionHeader::setCount(int count) {
    m_count = count;
    updateAccessibleName();
    update();
}

void SectionHeader::updateAccessibleName() {
    setAccessibleName(QStringLiteral("%1, %2").arg(m_title).arg(m_count));
}

QSize SectionHeader::sizeHint() const {
    const QFontMetrics metrics(titleFont(font()));
    return {metrics.horizontalAdvance(m_title) + 80, metrics.height() + 16};
}

QSize SectionHeader::minimumSizeHint() const {
    return sizeHint();
}

void SectionHeader::paintEvent(QPaintEvent* event) {
    (void)event;
    QPainter painter(this);
    paint(painter, rect(), m_title, m_count, palette(), font());
}

void SectionHeader::paint(QPainter& painter, const QRect& rect, const QString& title, int count,
                          const QPalette& palette, const QFont& font) {
    painter.save();
    const QFont bold = titleFont(font);
    const QFontMetrics metrics(bold);
    const QRect line(rect.left() + leftPadding, rect.bottom() - bottomPadding - metrics.height(),
                     rect.width() - 2 * leftPadding, metrics.height());
    painter.setFont(bold);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, title);
    const QString countText = QString::number(count);
    painter.setFont(font);
    const QSize capsule = CapsuleBadge::sizeFor(countText, font, false);
    const QRect badge(line.left() + metrics.horizontalAdvance(title) + countGap,
                      line.center().y() - capsule.height() / 2 + 1, capsule.width(),
                      capsule.height());
    CapsuleBadge::paint(painter, badge, countText, {},
                        PaletteColor::color(Palette::Color::secondary, palette), palette);
    painter.restore();
}

} // namespace vorlane
