// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/SidebarModel.h"

#include <QAbstractListModel>

namespace vorlane {

// The sidebar's rows for a QListView: section headers (neither enabled nor selectable, so the
// keyboard cursor passes over them), destinations and quick organization rows, copied from the
// SidebarModel's snapshot at each refresh. Main thread.
class SidebarListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role : int {
        rowKind = Qt::UserRole + 1, // SidebarModel::RowKind as int
        badgeCount,                 // destinations: the count, 0 when no badge is shown
        badgeColor,                 // destinations: Palette::Color as int
        expiringDot,                // organizations: bool
    };

    explicit SidebarListModel(SidebarModel& model, QObject* parent = nullptr);

    // Re-reads the store. Rows keep their places when only counts or dots changed, so the
    // selection and the keyboard cursor stay where they are.
    void refresh();
    const SidebarModel::Row& row(int index) const;
    // The row of a destination, or -1.
    int rowOf(SidebarItem item) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    SidebarModel& m_model;
    std::vector<SidebarModel::Row> m_rows; // what the views were last told about
};

} // namespace vorlane
