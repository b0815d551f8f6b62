// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/RenewalScreen.h"

#include <QAbstractListModel>

#include <vector>

namespace vorlane {

// The renewal screen's bands as one list: each band's header (title, count, monthly total)
// followed by its rows. Holds a copy of the bands; the view resets it after every rebuild. Main
// thread only.
class RenewalListModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setBands(std::vector<RenewalScreen::Band> bands);

    // Null unless the index is of that kind.
    const RenewalScreen::Band* band(const QModelIndex& index) const;
    const RenewalScreen::Row* row(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    // Headers are neither selectable nor enabled, so the keyboard steps over them.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // DisplayRole: the title; AccessibleTextRole: what the row says.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Position {
        int band;
        int row; // -1: the band's header
    };

    std::vector<RenewalScreen::Band> m_bands;
    std::vector<Position> m_positions;
};

} // namespace vorlane
