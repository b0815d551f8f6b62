// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/RowListView.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

namespace vorlane {

RowListView::RowListView(QWidget* parent)
    : QListView(parent) {
    setUniformItemSizes(true);
    setMouseTracking(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFrameShape(QFrame::NoFrame);
    setSpacing(0);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAttribute(Qt::WA_Hover);
    connect(this, &QListView::clicked, this, [this](const QModelIndex& index) {
        if (index.flags().testFlag(Qt::ItemIsEnabled)) {
            Q_EMIT rowChosen(index);
        }
    });
}

void RowListView::contextMenuEvent(QContextMenuEvent* event) {
    QModelIndex index;
    QPoint global = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        index = currentIndex();
        if (index.isValid()) {
            global = viewport()->mapToGlobal(visualRect(index).center());
        }
    } else {
        index = indexAt(event->pos());
        if (index.isValid()) {
            setCurrentIndex(index);
        }
    }
    if (!index.isValid() || !index.flags().testFlag(Qt::ItemIsEnabled)) {
        event->ignore();
        return;
    }
    event->accept();
    Q_EMIT rowMenuRequested(index, global);
}

void RowListView::keyPressEvent(QKeyEvent* event) {
    const QModelIndex index = currentIndex();
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && index.isValid() &&
        state() != QAbstractItemView::EditingState && index.flags().testFlag(Qt::ItemIsEnabled)) {
        event->accept();
        Q_EMIT rowChosen(index);
        return;
    }
    QListView::keyPressEvent(event);
}

} // namespace vorlane
