// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/PasswordHealthListModel.h"

#include "QtText.h"
#include "components/RowVariant.h"
#include "store/DataStore.h"

namespace vorlane {

PasswordHealthListModel::PasswordHealthListModel(DataStore& store, const UserCalendar& calendar,
                                                 QObject* parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_calendar(calendar) {}

void PasswordHealthListModel::setSections(
    const std::vector<PasswordHealthScreen::Section>& sections) {
    beginResetModel();
    m_lines.clear();
    for (const auto& section : sections) {
        m_lines.push_back(
            {toQString(section.title), static_cast<int>(section.rows.size()), {}, true});
        for (const auto& row : section.rows) {
            m_lines.push_back({{}, 0, row, false});
        }
    }
    endResetModel();
}

const PasswordHealthScreen::Row* PasswordHealthListModel::row(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return nullptr;
    }
    const Line& line = m_lines[static_cast<std::size_t>(index.row())];
    return line.isHeader ? nullptr : &line.row;
}

int PasswordHealthListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

Qt::ItemFlags PasswordHealthListModel::flags(const QModelIndex& index) const {
    if (!index.isValid() || m_lines[static_cast<std::size_t>(index.row())].isHeader) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QVariant PasswordHealthListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Line& line = m_lines[static_cast<std::size_t>(index.row())];
    if (line.isHeader) {
        switch (role) {
        case ListRole::kind:
            return QVariant::fromValue(ListRole::Kind::sectionHeader);
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return line.header;
        case ListRole::sectionCount:
            return line.count;
        default:
            return {};
        }
    }
    ServiceRecord* service = m_store.service(line.row.serviceId);
    if (service == nullptr) {
        return {};
    }
    // Drawn like every service row, but the subtitle names the finding's client and secret.
    ServiceRow shown = ServiceRow::of(*service, m_calendar);
    shown.title = line.row.title;
    shown.subtitle = line.row.subtitle;
    switch (role) {
    case ListRole::kind:
        return QVariant::fromValue(ListRole::Kind::service);
    case ListRole::serviceRow:
        return QVariant::fromValue(shown);
    case Qt::DisplayRole:
        return toQString(shown.title);
    case Qt::AccessibleTextRole:
        return toQString(shown.accessibleText());
    default:
        return {};
    }
}

} // namespace vorlane
