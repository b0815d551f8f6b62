// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

struct ServiceRow;

// Paints a service row: the kind's icon in its tint on a rounded tile, the title with the
// subtitle beneath, and at the right the status pill and the expiration badge, in the named
// colours made legible on the current palette. Rows are ListRole::rowHeight tall.
class ServiceRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The row's look, for delegates that mix service rows with others.
    static void paintRow(QPainter& painter, const QStyleOptionViewItem& option,
                         const ServiceRow& row);
};

} // namespace vorlane
