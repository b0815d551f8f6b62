// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SidebarListModel.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "components/PlainText.h"

namespace vorlane {

namespace {

bool sameLayout(const std::vector<SidebarModel::Row>& before,
                const std::vector<SidebarModel::Row>& after) {
    if (before.size() != after.size()) {
        return false;
    }
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i].kind != after[i].kind || before[i].organization != after[i].organization) {
            return false;
        }
    }
    return true;
}

} // namespace

SidebarListModel::SidebarListModel(SidebarModel& model, QObject* parent)
    : QAbstractListModel(parent)
    , m_model(model)
    , m_rows(model.rows()) {}

void SidebarListModel::refresh() {
    m_model.refresh();
    if (sameLayout(m_rows, m_model.rows())) {
        m_rows = m_model.rows();
        if (rowCount() > 0) {
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        }
        return;
    }
    beginResetModel();
    m_rows = m_model.rows();
    endResetModel();
}

const SidebarModel::Row& SidebarListModel::row(int index) const {
    return m_rows.at(static_cast<std::size_t>(index));
}

int SidebarListModel::rowOf(SidebarItem item) const {
    const auto& rows = m_rows;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].kind == SidebarModel::RowKind::destination && rows[i].item == item) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int SidebarListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant SidebarListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const SidebarModel::Row& shown = row(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return toQString(shown.title);
    case Qt::DecorationRole:
        return shown.icon.empty() ? QVariant() : QVariant(SymbolIcon::icon(shown.icon));
    case Qt::AccessibleTextRole:
        return toQString(shown.accessibleText);
    case Qt::ToolTipRole:
        // Long names are elided in the narrow column.
        return shown.kind == SidebarModel::RowKind::organization
                   ? PlainText::toolTip(toQString(shown.title))
                   : QVariant();
    case rowKind:
        return static_cast<int>(shown.kind);
    case badgeCount:
        return shown.showsBadge ? static_cast<qulonglong>(shown.count) : 0ULL;
    case badgeColor:
        return static_cast<int>(shown.badgeColor);
    case expiringDot:
        return shown.showsExpiringDot;
    default:
        return {};
    }
}

Qt::ItemFlags SidebarListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    // Headers only label their sections: the cursor passes over them.
    if (row(index.row()).kind == SidebarModel::RowKind::sectionHeader) {
        return Qt::NoItemFlags;
    }
    // Organization rows are buttons, not destinations: they take the cursor, never the selection.
    if (row(index.row()).kind == SidebarModel::RowKind::organization) {
        return Qt::ItemIsEnabled;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

} // namespace vorlane
