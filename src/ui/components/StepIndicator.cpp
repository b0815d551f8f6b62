// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/StepIndicator.h"

#include <QPainter>

namespace vorlane {

namespace {
constexpr int markerSize = 24;
} // namespace

StepIndicator::StepIndicator(QStringList titles, QWidget* parent)
    : QWidget(parent)
    , m_titles(std::move(titles)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void StepIndicator::setLastReached(int lastReached) {
    m_lastReached = lastReached;
    setAccessibleName(QStringLiteral("Step %1 of %2: %3")
                          .arg(lastReached + 1)
                          .arg(m_titles.size())
                          .arg(m_titles.value(lastReached)));
    update();
}

QSize StepIndicator::sizeHint() const {
    return {320, markerSize + fontMetrics().height() + 12};
}

void StepIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int count = static_cast<int>(m_titles.size());
    if (count == 0) {
        return;
    }
    const QColor reached = palette().color(QPalette::Highlight);
    const QColor pending = palette().color(QPalette::Mid);
    const int slot = width() / count;
    const int top = 4;
    for (int i = 0; i < count; ++i) {
        const int centre = slot * i + slot / 2;
        if (i + 1 < count) {
            painter.setPen(QPen(i < m_lastReached ? reached : pending, 2));
            painter.drawLine(centre + markerSize / 2 + 4, top + markerSize / 2,
                             centre + slot - markerSize / 2 - 4, top + markerSize / 2);
        }
        const QRect marker(centre - markerSize / 2, top, markerSize, markerSize);
        const bool isReached = i <= m_lastReached;
        painter.setPen(QPen(isReached ? reached : pending, 2));
        painter.setBrush(isReached ? reached : Qt::transparent);
        painter.drawEllipse(marker.adjusted(1, 1, -1, -1));
        painter.setPen(isReached ? palette().color(QPalette::HighlightedText)
                                 : palette().color(QPalette::WindowText));
        painter.drawText(marker, Qt::AlignCenter, QString::number(i + 1));
        painter.setPen(
            palette().color(i == m_lastReached ? QPalette::WindowText : QPalette::PlaceholderText));
        painter.drawText(
            QRect(centre - slot / 2, marker.bottom() + 4, slot, fontMetrics().height()),
            Qt::AlignCenter, m_titles[i]);
    }
}

} // namespace vorlane
