// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

class ExpenseCardGrid;

// Paints one expense card (an ExpenseCardModel row) at the grid's card width: the group's icon in
// its colour and its title, the monthly and yearly amounts, then one line per service with the
// kind's icon, the title, the billing cycle and the monthly cost. Its height follows the number
// of services.
class ExpenseCardDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit ExpenseCardDelegate(ExpenseCardGrid* grid);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    ExpenseCardGrid* m_grid;
};

} // namespace vorlane
