// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

namespace vorlane {

// The list view every screen's rows sit in: uniform row heights (ListRole::rowHeight) so that
// 100,000 rows scroll without being measured, hover feedback, and one signal for "this row was
// chosen" whether by a click or by Return, plus the context menu request by the right button or
// the keyboard's menu key (for the current row then).
class RowListView : public QListView {
    Q_OBJECT

public:
    explicit RowListView(QWidget* parent = nullptr);

Q_SIGNALS:
    void rowChosen(const QModelIndex& index);
    void rowMenuRequested(const QModelIndex& index, const QPoint& globalPosition);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace vorlane
