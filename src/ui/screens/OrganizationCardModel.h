// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>

namespace vorlane {

struct Organization;
class OrganizationGridScreen;

// The cards of an organization grid as a Qt list, one row per card of the screen model, in its
// order. The delegate paints from the screen model itself; this model answers the name, the
// spoken sentence and the organization. `reload` after the screen model rebuilds.
class OrganizationCardModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit OrganizationCardModel(const OrganizationGridScreen& screen, QObject* parent = nullptr);

    void reload();
    Organization* organization(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    // DisplayRole: the name; AccessibleTextRole: the card's sentence.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const OrganizationGridScreen& m_screen;
};

} // namespace vorlane
