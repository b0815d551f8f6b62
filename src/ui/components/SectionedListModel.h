// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>

#include <vector>

namespace vorlane {

class DataStore;
struct Organization;
struct ServiceRecord;
class UserCalendar;

// One list of sections, each a header (title and count) followed by organization rows or service
// rows: the search results and the archive. Finding a row's section walks the few sections, so
// `data` stays constant time. Holds non-owning pointers; the screen resets it after every store
// change. Main thread only; the store and calendar must outlive it.
class SectionedListModel : public QAbstractListModel {
    Q_OBJECT

public:
    struct Section {
        QString title;
        std::vector<Organization*> organizations;
        std::vector<ServiceRecord*> services;
    };

    SectionedListModel(DataStore& store, const UserCalendar& calendar, QObject* parent = nullptr);

    // Sections without rows are left out.
    void setSections(std::vector<Section> sections);

    // Null unless the row is of that kind.
    Organization* organization(const QModelIndex& index) const;
    ServiceRecord* service(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    // Headers are neither selectable nor enabled, so the keyboard steps over them.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Position {
        const Section* section = nullptr;
        int row = -1; // -1: the header; otherwise the row within the section
    };
    Position position(const QModelIndex& index) const;

    DataStore& m_store;
    const UserCalendar& m_calendar;
    std::vector<Section> m_sections;
    int m_rowCount = 0;
};

} // namespace vorlane
