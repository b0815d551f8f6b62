// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/DashboardScreen.h"

#include <QAbstractListModel>

#include <vector>

namespace vorlane {

// The dashboard's alert banners as a list: DisplayRole is the service title, AccessibleTextRole
// the banner's sentence; the delegate reads the whole alert with `alert`. Holds the screen
// model's alerts by value (their service pointers belong to the store); the dashboard resets it
// after every store change. Main thread only.
class AlertListModel : public QAbstractListModel {
    Q_OBJECT

public:
    static constexpr int rowHeight = 48;

    using QAbstractListModel::QAbstractListModel;

    void setAlerts(std::vector<DashboardScreen::Alert> alerts);
    // Null for an invalid index.
    const DashboardScreen::Alert* alert(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<DashboardScreen::Alert> m_alerts;
};

} // namespace vorlane
