// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace vorlane {

class DataStore;
class SidebarListModel;

// Paints the sidebar's rows: section headers in small secondary text; destinations with their
// icon, name and count capsule; quick organization rows with the avatar, the name and the orange
// dot of an organization with a service due within a week. Main thread; the store and the list
// model must outlive it.
class SidebarDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int avatarSize = 22;
    static constexpr int dotSize = 6;

    SidebarDelegate(DataStore& store, const SidebarListModel& rows, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    DataStore& m_store;
    const SidebarListModel& m_rows;
};

} // namespace vorlane
