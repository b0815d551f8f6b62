// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/SectionedListModel.h"

#include "QtText.h"
#include "components/OrgAvatar.h"
#include "components/RowVariant.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <QImage>

namespace vorlane {

namespace {

int rowsOf(const SectionedListModel::Section& section) {
    return static_cast<int>(section.organizations.size() + section.services.size());
}

} // namespace

SectionedListModel::SectionedListModel(DataStore& store, const UserCalendar& calendar,
                                       QObject* parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_calendar(calendar) {}

void SectionedListModel::setSections(std::vector<Section> sections) {
    beginResetModel();
    m_sections.clear();
    m_rowCount = 0;
    for (Section& section : sections) {
        if (rowsOf(section) > 0) {
            m_rowCount += 1 + rowsOf(section);
            m_sections.push_back(std::move(section));
        }
    }
    endResetModel();
}

SectionedListModel::Position SectionedListModel::position(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= m_rowCount) {
        return {};
    }
    int row = index.row();
    for (const Section& section : m_sections) {
        const int size = 1 + rowsOf(section);
        if (row < size) {
            return {&section, row - 1};
        }
        row -= size;
    }
    return {};
}

Organization* SectionedListModel::organization(const QModelIndex& index) const {
    const Position at = position(index);
    if (!at.section || at.row < 0 ||
        static_cast<std::size_t>(at.row) >= at.section->organizations.size()) {
        return nullptr;
    }
    return at.section->organizations[static_cast<std::size_t>(at.row)];
}

ServiceRecord* SectionedListModel::service(const QModelIndex& index) const {
    const Position at = position(index);
    if (!at.section || at.row < 0) {
        return nullptr;
    }
    const std::size_t row = static_cast<std::size_t>(at.row) - at.section->organizations.size();
    if (static_cast<std::size_t>(at.row) < at.section->organizations.size() ||
        row >= at.section->services.size()) {
        return nullptr;
    }
    return at.section->services[row];
}

int SectionedListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rowCount;
}

Qt::ItemFlags SectionedListModel::flags(const QModelIndex& index) const {
    const Position at = position(index);
    if (!at.section || at.row < 0) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QVariant SectionedListModel::data(const QModelIndex& index, int role) const {
    const Position at = position(index);
    if (!at.section) {
        return {};
    }
    if (at.row < 0) {
        const int count = rowsOf(*at.section);
        switch (role) {
        case Qt::DisplayRole:
            return at.section->title;
        case Qt::AccessibleTextRole:
            return QStringLiteral("%1, %2").arg(at.section->title).arg(count);
        case ListRole::kind:
            return QVariant::fromValue(ListRole::Kind::sectionHeader);
        case ListRole::sectionCount:
            return count;
        default:
            return {};
        }
    }
    if (Organization* found = organization(index)) {
        switch (role) {
        case Qt::DisplayRole:
            return toQString(found->name);
        case Qt::AccessibleTextRole:
            return toQString(OrganizationRow::of(*found).accessibleText());
        case ListRole::kind:
            return QVariant::fromValue(ListRole::Kind::organization);
        case ListRole::organizationRow:
            return QVariant::fromValue(OrganizationRow::of(*found));
        case ListRole::logo:
            return OrgAvatar::logo(m_store, *found);
        default:
            return {};
        }
    }
    if (ServiceRecord* found = service(index)) {
        switch (role) {
        case Qt::DisplayRole:
            return toQString(found->title);
        case Qt::AccessibleTextRole:
            return toQString(ServiceRow::of(*found, m_calendar).accessibleText());
        case ListRole::kind:
            return QVariant::fromValue(ListRole::Kind::service);
        case ListRole::serviceRow:
            return QVariant::fromValue(ServiceRow::of(*found, m_calendar));
        default:
            return {};
        }
    }
    return {};
}

} // namespace vorlane
