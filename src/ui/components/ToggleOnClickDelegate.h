// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

// For lists whose rows are check boxes: a click anywhere on a row, its box included, toggles
// the row's check state once, and so do Space and Select on the current row. The standard
// delegate toggles only on the box, so a view that also toggled on its own click signal turned
// a click on the box into two toggles. Rows without a check state are left to the standard
// delegate. Main thread.
class ToggleOnClickDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;
};

} // namespace vorlane
