// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

// Paints the rows of a DetailRowModel, and reports a click on a row's action button.
class DetailRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

Q_SIGNALS:
    void actionClicked(const QModelIndex& index);

private:
    // Where the row's action button sits, or an empty rectangle when it has none.
    static QRect actionRect(const QStyleOptionViewItem& option, const QModelIndex& index);
};

} // namespace vorlane
