// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ExpenseScreen.h"

#include <QAbstractListModel>

#include <vector>

namespace vorlane {

// The expense screen's cards as a list: DisplayRole is the card title, AccessibleTextRole its
// sentence; the delegate reads the whole card with `card`. Points at the screen model's cards,
// which must outlive it: the screen resets it after every regrouping or store change. Main thread.
class ExpenseCardModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setCards(const std::vector<ExpenseScreen::Card>& cards);
    // Null for an invalid index.
    const ExpenseScreen::Card* card(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const std::vector<ExpenseScreen::Card>* m_cards = nullptr;
};

} // namespace vorlane
