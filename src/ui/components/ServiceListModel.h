// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>

#include <vector>

namespace vorlane {

struct ServiceRecord;
class UserCalendar;

// A flat list of service rows over the services a screen model gives, in its order. `data` builds
// the row of one service on demand (constant time, whatever the list's length), so the expiration
// badge is as of the paint. Holds non-owning pointers: the screen resets it from its model after
// every store change. Main thread only; the calendar must outlive it.
class ServiceListModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit ServiceListModel(const UserCalendar& calendar, QObject* parent = nullptr);

    void setServices(std::vector<ServiceRecord*> services);
    // The service of a row; null for an invalid index.
    ServiceRecord* service(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    // DisplayRole: the title; AccessibleTextRole: the row's sentence; ListRole::kind and
    // ListRole::serviceRow for the delegate.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const UserCalendar& m_calendar;
    std::vector<ServiceRecord*> m_services;
};

} // namespace vorlane
