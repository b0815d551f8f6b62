// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RenewalListModel.h"

#include "QtText.h"

namespace vorlane {

void RenewalListModel::setBands(std::vector<RenewalScreen::Band> bands) {
    beginResetModel();
    m_bands = std::move(bands);
    m_positions.clear();
    for (int b = 0; b < static_cast<int>(m_bands.size()); ++b) {
        m_positions.push_back({b, -1});
        for (int r = 0; r < static_cast<int>(m_bands[b].rows.size()); ++r) {
            m_positions.push_back({b, r});
        }
    }
    endResetModel();
}

const RenewalScreen::Band* RenewalListModel::band(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= static_cast<int>(m_positions.size())) {
        return nullptr;
    }
    const Position position = m_positions[static_cast<std::size_t>(index.row())];
    return position.row < 0 ? &m_bands[static_cast<std::size_t>(position.band)] : nullptr;
}

const RenewalScreen::Row* RenewalListModel::row(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= static_cast<int>(m_positions.size())) {
        return nullptr;
    }
    const Position position = m_positions[static_cast<std::size_t>(index.row())];
    if (position.row < 0) {
        return nullptr;
    }
    return &m_bands[static_cast<std::size_t>(position.band)]
                .rows[static_cast<std::size_t>(position.row)];
}

int RenewalListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_positions.size());
}

Qt::ItemFlags RenewalListModel::flags(const QModelIndex& index) const {
    return row(index) != nullptr ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QVariant RenewalListModel::data(const QModelIndex& index, int role) const {
    if (const RenewalScreen::Row* entry = row(index)) {
        if (role == Qt::DisplayRole) {
            return toQString(entry->title);
        }
        if (role == Qt::AccessibleTextRole) {
            return toQString(entry->accessibleText);
        }
    } else if (const RenewalScreen::Band* header = band(index)) {
        if (role == Qt::DisplayRole) {
            return toQString(header->title);
        }
        if (role == Qt::AccessibleTextRole) {
            return toQString(header->accessibleText);
        }
    }
    return {};
}

} // namespace vorlane
