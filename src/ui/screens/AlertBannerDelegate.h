// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

// Paints one of the dashboard's alert banners (an AlertListModel row): a rounded band tinted in
// its level's colour, the level's icon, the service title, the message and a disclosure chevron.
// The hovered or current banner is outlined so that the keyboard's place is visible.
class AlertBannerDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace vorlane
