// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/BarChart.h"

#include "QtText.h"
#include "components/PaletteColor.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace vorlane {

namespace {

constexpr int padding = 16;
constexpr int cornerRadius = 10;
constexpr int rowHeight = 24;     // horizontal: one bar per row
constexpr int barThickness = 14;  // horizontal bar height
constexpr int columnHeight = 120; // vertical: the tallest column
constexpr int gap = 8;

QFont titleFont(const QFont& base) {
    QFont font = base;
    font.setWeight(QFont::Bold);
    return font;
}

QFont smallFont(const QFont& base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 0.85);
    return font;
}

QColor barColor(Palette::Color color, const QPalette& palette) {
    // A shade between the named colour and its legible foreground: full colour is too loud on
    // a dark base, the foreground too dull on a light one.
    const QColor tint = PaletteColor::color(color, palette);
    return PaletteColor::isDark(palette) ? PaletteColor::foreground(tint, palette) : tint;
}

} // namespace

BarChart::BarChart(Orientation orientation, QWidget* parent)
    : QWidget(parent)
    , m_orientation(orientation) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void BarChart::setTitle(const QString& title) {
    m_title = title;
    setAccessibleName(title);
    update();
}

void BarChart::setBars(std::vector<ChartBar> bars) {
    m_bars = std::move(bars);
    QStringList sentences;
    for (const ChartBar& bar : m_bars) {
        sentences << toQString(bar.accessibleText);
    }
    setAccessibleDescription(sentences.join(QStringLiteral(". ")));
    updateGeometry();
    update();
}

int BarChart::titleHeight() const {
    return QFontMetrics(titleFont(font())).height() + gap;
}

QSize BarChart::sizeHint() const {
    const int small = QFontMetrics(smallFont(font())).height();
    const int body = m_orientation == Orientation::horizontal
                         ? static_cast<int>(m_bars.size()) * rowHeight
                         : small + 4 + columnHeight + 4 + small;
    return {400, 2 * padding + titleHeight() + body};
}

QSize BarChart::minimumSizeHint() const {
    return {240, sizeHint().height()};
}

void BarChart::paintEvent(QPaintEvent* event) {
    (void)event;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = palette();
    QPainterPath frame;
    frame.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.fillPath(frame, pal.color(QPalette::Base));
    painter.setPen(QPen(pal.color(QPalette::Mid), 1));
    painter.drawPath(frame);

    const QRect inner = rect().adjusted(padding, padding, -padding, -padding);
    painter.setFont(titleFont(font()));
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(QRect(inner.left(), inner.top(), inner.width(), titleHeight() - gap),
                     Qt::AlignLeft | Qt::AlignVCenter, m_title);
    const QRect area = inner.adjusted(0, titleHeight(), 0, 0);
    painter.setFont(smallFont(font()));
    if (m_orientation == Orientation::horizontal) {
        paintHorizontal(painter, area);
    } else {
        paintVertical(painter, area);
    }
}

void BarChart::paintHorizontal(QPainter& painter, const QRect& area) {
    const QPalette& pal = palette();
    const QFontMetrics metrics(painter.font());
    int labelWidth = 0;
    int valueWidth = 0;
    for (const ChartBar& bar : m_bars) {
        labelWidth = std::max(labelWidth, metrics.horizontalAdvance(toQString(bar.label)));
        valueWidth = std::max(valueWidth, metrics.horizontalAdvance(toQString(bar.valueText)));
    }
    // A pixel or two more than the widest label: elision measures a little differently.
    labelWidth = std::min(labelWidth + 2, area.width() / 3);
    const int barLeft = area.left() + labelWidth + gap;
    const int barSpace = std::max(0, area.right() - barLeft - gap - valueWidth);
    int top = area.top();
    for (const ChartBar& bar : m_bars) {
        const QRect row(area.left(), top, area.width(), rowHeight);
        painter.setPen(pal.color(QPalette::Text));
        painter.drawText(QRect(row.left(), row.top(), labelWidth, rowHeight),
                         Qt::AlignRight | Qt::AlignVCenter,
                         metrics.elidedText(toQString(bar.label), Qt::ElideRight, labelWidth));
        const int length = static_cast<int>(bar.fraction * barSpace);
        const QRectF barRect(barLeft, row.center().y() - barThickness / 2.0 + 1,
                             std::max(length, 2), barThickness);
        QPainterPath path;
        path.addRoundedRect(barRect, 4, 4);
        painter.fillPath(path, barColor(bar.color, pal));
        painter.setPen(pal.color(QPalette::PlaceholderText));
        painter.drawText(
            QRect(static_cast<int>(barRect.right()) + gap, row.top(), valueWidth + gap, rowHeight),
            Qt::AlignLeft | Qt::AlignVCenter, toQString(bar.valueText));
        top += rowHeight;
    }
}

void BarChart::paintVertical(QPainter& painter, const QRect& area) {
    const QPalette& pal = palette();
    const QFontMetrics metrics(painter.font());
    const int count = static_cast<int>(m_bars.size());
    if (count == 0) {
        return;
    }
    const int baseline = area.top() + metrics.height() + 4 + columnHeight;
    QColor grid = pal.color(QPalette::Text);
    grid.setAlphaF(0.15F);
    painter.setPen(QPen(grid, 1));
    painter.drawLine(area.left(), baseline, area.right(), baseline);
    const double slot = static_cast<double>(area.width()) / count;
    const double barWidth = std::min(36.0, slot * 0.6);
    for (int i = 0; i < count; ++i) {
        const ChartBar& bar = m_bars[static_cast<std::size_t>(i)];
        const double centre = area.left() + slot * (i + 0.5);
        const double height = bar.fraction * columnHeight;
        if (height > 0) {
            const QRectF column(centre - barWidth / 2, baseline - height, barWidth, height);
            QPainterPath path;
            path.addRoundedRect(column, 4, 4);
            painter.fillPath(path, barColor(bar.color, pal));
        }
        const int textWidth = static_cast<int>(slot);
        const int left = static_cast<int>(centre - slot / 2);
        // Amounts only over real columns: twelve "$0" would drown the ones that matter.
        if (bar.fraction > 0) {
            painter.setPen(pal.color(QPalette::PlaceholderText));
            painter.drawText(
                QRect(left, static_cast<int>(baseline - height) - 4 - metrics.height(), textWidth,
                      metrics.height()),
                Qt::AlignCenter,
                metrics.elidedText(toQString(bar.valueText), Qt::ElideRight, textWidth));
        }
        painter.setPen(pal.color(QPalette::Text));
        painter.drawText(QRect(left, baseline + 4, textWidth, metrics.height()), Qt::AlignCenter,
                         metrics.elidedText(toQString(bar.label), Qt::ElideRight, textWidth));
    }
}

} // namespace vorlane
