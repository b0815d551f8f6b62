// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ChartBar.h"

#include <QWidget>

#include <vector>

namespace vorlane {

// A bar chart painted from a screen model's bars: horizontal (label at the left, the bar, the
// amount after it; for long group names) or vertical (the amount above each column, the label
// under it; for months). Bars take their named colour; text and grid lines come from the palette,
// so both light and dark themes read. Announced as its title with every bar's sentence as the
// description. Not focusable: it shows what the cards and lists beside it already hold.
class BarChart : public QWidget {
    Q_OBJECT

public:
    enum class Orientation { horizontal, vertical };

    explicit BarChart(Orientation orientation, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setBars(std::vector<ChartBar> bars);
    const std::vector<ChartBar>& bars() const { return m_bars; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintHorizontal(QPainter& painter, const QRect& area);
    void paintVertical(QPainter& painter, const QRect& area);
    int titleHeight() const;

    Orientation m_orientation;
    QString m_title;
    std::vector<ChartBar> m_bars;
};

} // namespace vorlane
