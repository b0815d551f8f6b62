// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace vorlane {

// A row of numbered step markers joined by bars, the ones reached so far filled with the
// highlight colour. Paints only; the sheet says how many steps there are and which are reached.
class StepIndicator : public QWidget {
    Q_OBJECT

public:
    StepIndicator(QStringList titles, QWidget* parent = nullptr);

    // Steps 0..`lastReached` are drawn as reached.
    void setLastReached(int lastReached);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QStringList m_titles;
    int m_lastReached = 0;
};

} // namespace vorlane
