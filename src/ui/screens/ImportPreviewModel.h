// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QStringList>

namespace vorlane {

class ImportFlow;

// The import sheet's preview table over an ImportFlow's rows: organization, title, kind,
// username, host, a mark for secrets, expiration and status. Organization and kind are
// editable (their choices under `choicesRole`); a duplicate's status cell carries a check box
// that keeps it. Every edit goes to the flow, which re-runs the duplicate check, so the whole
// table is redrawn after one. The flow must outlive the model. Main thread only.
class ImportPreviewModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { organization, title, serviceType, username, host, secrets, expiration, status };
    // A QStringList of values an editable cell offers; the organization's list is open (a new
    // name may be typed), the kind's is closed.
    static constexpr int choicesRole = Qt::UserRole + 1;

    ImportPreviewModel(ImportFlow& flow, QStringList organizations, QObject* parent = nullptr);

    // Call after the flow's rows changed outside the table (a file read, the organization rule).
    void reload();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    ImportFlow& m_flow;
    QStringList m_organizations; // the vault's, by name
    QStringList m_serviceTypes;  // labels, in ServiceType::allCases() order
};

} // namespace vorlane
