// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

// Paints the renewal list: a band's header with its count and, at the right, its monthly total;
// a row with the expiration badge, the kind's icon in its tint, the title, the days text in the
// expiration colour, a "Mark Renewed" button and a disclosure chevron. A click on the button
// asks for the renewal (`markRenewedClicked`); the view still reports the click on the row, so it
// asks `takeButtonClick` first and does not open the service then.
class RenewalRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // Where the row's button sits within the row's rectangle.
    static QRect buttonRect(const QStyleOptionViewItem& option);

    // True once after a click landed on a row's button.
    bool takeButtonClick();

Q_SIGNALS:
    void markRenewedClicked(const QModelIndex& index);

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    bool m_buttonClicked = false;
};

} // namespace vorlane
