// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ServiceListModel.h"

#include "QtText.h"
#include "components/ListRole.h"
#include "components/RowVariant.h"
#include "model/ServiceRecord.h"

namespace vorlane {

ServiceListModel::ServiceListModel(const UserCalendar& calendar, QObject* parent)
    : QAbstractListModel(parent)
    , m_calendar(calendar) {}

void ServiceListModel::setServices(std::vector<ServiceRecord*> services) {
    beginResetModel();
    m_services = std::move(services);
    endResetModel();
}

ServiceRecord* ServiceListModel::service(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return nullptr;
    }
    return m_services[static_cast<std::size_t>(index.row())];
}

int ServiceListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_services.size());
}

QVariant ServiceListModel::data(const QModelIndex& index, int role) const {
    ServiceRecord* record = service(index);
    if (!record) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return toQString(record->title);
    case Qt::AccessibleTextRole:
        return toQString(ServiceRow::of(*record, m_calendar).accessibleText());
    case ListRole::kind:
        return QVariant::fromValue(ListRole::Kind::service);
    case ListRole::serviceRow:
        return QVariant::fromValue(ServiceRow::of(*record, m_calendar));
    default:
        return {};
    }
}

} // namespace vorlane
