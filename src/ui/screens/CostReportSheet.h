// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/CostReportExport.h"

#include <QDialog>

class QComboBox;
class QDateEdit;
class QPushButton;

namespace vorlane {

struct AppContext;
struct Organization;

// "Export Cost Report…" of an organization: the period, then "Export CSV…" or "Export PDF…",
// each asking where to save. A failure is said in a message over the sheet, which stays open.
class CostReportSheet : public QDialog {
    Q_OBJECT

public:
    CostReportSheet(AppContext& context, Organization& organization, QWidget* parent = nullptr);

    QComboBox* periodPicker() const { return m_period; }

private:
    void exportAs(bool pdf);

    AppContext& m_context;
    Organization& m_organization;
    CostReportExport m_export;
    QComboBox* m_period;
    QDateEdit* m_from;
    QDateEdit* m_to;
};

} // namespace vorlane
