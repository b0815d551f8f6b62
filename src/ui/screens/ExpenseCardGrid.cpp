// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ExpenseCardGrid.h"

#include <QResizeEvent>
#include <QTimer>

#include <algorithm>

namespace vorlane {

ExpenseCardGrid::ExpenseCardGrid(QWidget* parent)
    : QListView(parent) {
    setViewMode(QListView::ListMode);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setSpacing(0);
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    viewport()->setAutoFillBackground(false);
    // The viewport reaches one gap past the right edge, so that the last column's card (not
    // the gap after it) lines up with the summary cards above.
    setViewportMargins(0, 0, -gap, 0);
}

int ExpenseCardGrid::cellWidth() const {
    // Cells fill the row exactly (Qt wraps a row that is a pixel too wide); each card leaves
    // `gap` free at its right and bottom, so the first column lines up with the page's left edge.
    const int width = viewport()->width();
    const int columns = std::max(1, (width + gap) / (minimumCardWidth + gap));
    return std::max(minimumCardWidth / 2, width / columns);
}

void ExpenseCardGrid::setModel(QAbstractItemModel* model) {
    QListView::setModel(model);
    connect(model, &QAbstractItemModel::modelReset, this, &ExpenseCardGrid::fitHeight);
    fitHeight();
}

void ExpenseCardGrid::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    if (event->oldSize().width() != event->size().width()) {
        // After Qt has laid the cards out again for the new width.
        QTimer::singleShot(0, this, &ExpenseCardGrid::fitHeight);
    }
}

void ExpenseCardGrid::fitHeight() {
    if (model() == nullptr) {
        return;
    }
    doItemsLayout();
    int bottom = 0;
    for (int row = 0; row < model()->rowCount(); ++row) {
        bottom = std::max(bottom, visualRect(model()->index(row, 0)).bottom());
    }
    // visualRect is in viewport coordinates, which scroll; the grid never does, so they are
    // the grid's own.
    setFixedHeight(bottom + 1);
}

} // namespace vorlane
