// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ExpenseCardModel.h"

#include "QtText.h"

namespace vorlane {

void ExpenseCardModel::setCards(const std::vector<ExpenseScreen::Card>& cards) {
    beginResetModel();
    m_cards = &cards;
    endResetModel();
}

const ExpenseScreen::Card* ExpenseCardModel::card(const QModelIndex& index) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) {
        return nullptr;
    }
    return &(*m_cards)[static_cast<std::size_t>(index.row())];
}

int ExpenseCardModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || m_cards == nullptr ? 0 : static_cast<int>(m_cards->size());
}

QVariant ExpenseCardModel::data(const QModelIndex& index, int role) const {
    const ExpenseScreen::Card* shown = card(index);
    if (shown == nullptr) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return toQString(shown->title);
    case Qt::AccessibleTextRole:
        return toQString(shown->accessibleText());
    default:
        return {};
    }
}

} // namespace vorlane
