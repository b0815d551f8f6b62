// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/AlertListModel.h"

#include "QtText.h"

#include <QSize>

#include <utility>

namespace vorlane {

void AlertListModel::setAlerts(std::vector<DashboardScreen::Alert> alerts) {
    beginResetModel();
    m_alerts = std::move(alerts);
    endResetModel();
}

const DashboardScreen::Alert* AlertListModel::alert(const QModelIndex& index) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) {
        return nullptr;
    }
    return &m_alerts[static_cast<std::size_t>(index.row())];
}

int AlertListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_alerts.size());
}

QVariant AlertListModel::data(const QModelIndex& index, int role) const {
    const DashboardScreen::Alert* shown = alert(index);
    if (shown == nullptr) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return toQString(shown->title);
    case Qt::AccessibleTextRole:
        return toQString(shown->accessibleText());
    case Qt::SizeHintRole:
        return QSize(0, rowHeight);
    default:
        return {};
    }
}

} // namespace vorlane
