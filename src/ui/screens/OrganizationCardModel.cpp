// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationCardModel.h"

#include "QtText.h"
#include "screens/OrganizationGridScreen.h"

namespace vorlane {

OrganizationCardModel::OrganizationCardModel(const OrganizationGridScreen& screen, QObject* parent)
    : QAbstractListModel(parent)
    , m_screen(screen) {}

void OrganizationCardModel::reload() {
    beginResetModel();
    endResetModel();
}

Organization* OrganizationCardModel::organization(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return nullptr;
    }
    return m_screen.cards()[static_cast<std::size_t>(index.row())].organization;
}

int OrganizationCardModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_screen.cards().size());
}

QVariant OrganizationCardModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const auto& card = m_screen.cards()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return toQString(card.name);
    case Qt::AccessibleTextRole:
        return toQString(card.accessibleText);
    default:
        return {};
    }
}

} // namespace vorlane
