// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/DetailRowModel.h"

namespace vorlane {

void DetailRowModel::setRows(std::vector<Row> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

const DetailRowModel::Row* DetailRowModel::row(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return nullptr;
    }
    return &m_rows[static_cast<std::size_t>(index.row())];
}

int DetailRowModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

Qt::ItemFlags DetailRowModel::flags(const QModelIndex& index) const {
    const Row* r = row(index);
    if (r == nullptr || r->isHeader) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QVariant DetailRowModel::data(const QModelIndex& index, int role) const {
    const Row* r = row(index);
    if (r == nullptr) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return r->title;
    case Qt::AccessibleTextRole:
        return r->accessibleText.isEmpty() ? r->title : r->accessibleText;
    default:
        return {};
    }
}

} // namespace vorlane
