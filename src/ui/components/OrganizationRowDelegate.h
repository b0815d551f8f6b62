// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

class QImage;

namespace vorlane {

struct OrganizationRow;

// Paints an organization row: on a translucent rounded rectangle (radius 8), the avatar, the
// name with the project beneath when there is one, and "%lld services" at the right. Reads
// ListRole::organizationRow and ListRole::logo. Rows are ListRole::rowHeight tall.
class OrganizationRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    static void paintRow(QPainter& painter, const QStyleOptionViewItem& option,
                         const OrganizationRow& row, const QImage& logo);
};

} // namespace vorlane
