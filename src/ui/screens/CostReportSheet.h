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

// "Export Cost Report…": the organization (only when opened from the expense screen), the period,
// then "Export CSV…" or "Export PDF…", each asking where to save. A failure is said in a message
// over the sheet, which stays open.
class CostReportSheet : public QDialog {
    Q_OBJECT

public:
    // The report of `organization`, from its detail.
    CostReportSheet(AppContext& context, Organization& organization, QWidget* parent = nullptr);
    // The report of an organization chosen in a picker that starts at `selected` (or the first
    // when null), from the expense screen.
    CostReportSheet(AppContext& context, const Organization* selected, QWidget* parent = nullptr);

    const CostReportExport& exporter() const { return m_export; }
    // Null when the sheet reports on one organization only.
    QComboBox* organizationPicker() const { return m_organization; }
    QComboBox* periodPicker() const { return m_period; }
    QPushButton* csvButton() const { return m_csv; }
    QPushButton* pdfButton() const { return m_pdf; }

    // Writes the report of the chosen organization and period to `path` as a PDF or a CSV: an
    // empty text when done, else what went wrong (the dates, or the file).
    QString exportTo(const QString& path, bool pdf);

private:
    CostReportSheet(AppContext& context, CostReportExport exporter, QWidget* parent);
    void exportAs(bool pdf);
    std::optional<ReportPeriod> period(QString& error) const;

    AppContext& m_context;
    CostReportExport m_export;
    QComboBox* m_organization = nullptr;
    QComboBox* m_period;
    QDateEdit* m_from;
    QDateEdit* m_to;
    QPushButton* m_csv = nullptr;
    QPushButton* m_pdf = nullptr;
};

} // namespace vorlane
