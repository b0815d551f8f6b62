// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/CostReportSheet.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "model/Organization.h"
#include "money/CostReport.h"
#include "report/CostReportPdf.h"
#include "store/DataStore.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace vorlane {

namespace {

std::chrono::year_month_day toDate(const QDate& date) {
    using namespace std::chrono;
    return year(date.year()) / month(static_cast<unsigned>(date.month())) /
           day(static_cast<unsigned>(date.day()));
}

} // namespace

CostReportSheet::CostReportSheet(AppContext& context, Organization& organization, QWidget* parent)
    : CostReportSheet(context, CostReportExport(context.store, organization, context.calendar),
                      parent) {}

CostReportSheet::CostReportSheet(AppContext& context, const Organization* selected, QWidget* parent)
    : CostReportSheet(context, CostReportExport(context.store, context.calendar, selected),
                      parent) {}

CostReportSheet::CostReportSheet(AppContext& context, CostReportExport exporter, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_export(std::move(exporter))
    , m_period(new QComboBox)
    , m_from(new QDateEdit)
    , m_to(new QDateEdit) {
    setWindowTitle(toQString(CostReportExport::title));
    setWindowModality(Qt::WindowModal);
    auto* form = new QFormLayout(this);
    if (m_export.choosesOrganization()) {
        m_organization = new QComboBox;
        for (const Organization* organization : m_export.organizationChoices()) {
            m_organization->addItem(toQString(organization->name));
        }
        m_organization->setCurrentIndex(static_cast<int>(m_export.organizationChoice()));
        connect(m_organization, &QComboBox::currentIndexChanged, this, [this](int index) {
            if (index >= 0) {
                m_export.chooseOrganization(static_cast<std::size_t>(index));
            }
        });
        form->addRow(toQString(CostReportExport::organizationLabel), m_organization);
    }
    for (const std::string_view choice : CostReportExport::periodChoices()) {
        m_period->addItem(toQString(choice));
    }
    m_period->setCurrentIndex(static_cast<int>(CostReportExport::thisYearChoice));
    const QDate today = QDate::currentDate();
    for (QDateEdit* edit : {m_from, m_to}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
        edit->setEnabled(false);
    }
    m_from->setDate(QDate(today.year(), 1, 1));
    m_to->setDate(QDate(today.year(), 12, 31));
    connect(m_period, &QComboBox::currentIndexChanged, this, [this](int index) {
        const bool custom = index == static_cast<int>(CostReportExport::customChoice);
        m_from->setEnabled(custom);
        m_to->setEnabled(custom);
    });
    form->addRow(toQString(CostReportExport::periodLabel), m_period);
    form->addRow(toQString(CostReportExport::fromLabel), m_from);
    form->addRow(toQString(CostReportExport::toLabel), m_to);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_csv = buttons->addButton(QStringLiteral("Export CSV\u2026"), QDialogButtonBox::AcceptRole);
    m_pdf = buttons->addButton(QStringLiteral("Export PDF\u2026"), QDialogButtonBox::AcceptRole);
    m_pdf->setDefault(true);
    // Without an organization to choose there is nothing to report on.
    const bool any = m_export.organization() != nullptr;
    m_csv->setEnabled(any);
    m_pdf->setEnabled(any);
    connect(m_csv, &QPushButton::clicked, this, [this] { exportAs(false); });
    connect(m_pdf, &QPushButton::clicked, this, [this] { exportAs(true); });
    // The two export buttons decide for themselves when the sheet closes.
    disconnect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

std::optional<ReportPeriod> CostReportSheet::period(QString& error) const {
    std::string reason;
    const std::optional<ReportPeriod> chosen =
        m_export.period(static_cast<std::size_t>(m_period->currentIndex()), toDate(m_from->date()),
                        toDate(m_to->date()), reason);
    error = toQString(reason);
    return chosen;
}

void CostReportSheet::exportAs(bool pdf) {
    QString failure;
    const std::optional<ReportPeriod> chosen = period(failure);
    if (!chosen) {
        QMessageBox::warning(this, toQString(CostReportExport::title), failure);
        return;
    }
    const QString suggested =
        QDir::home().filePath(toQString(m_export.suggestedFileName(*chosen, pdf ? "pdf" : "csv")));
    const QString path = QFileDialog::getSaveFileName(
        this, toQString(CostReportExport::title), suggested,
        pdf ? QStringLiteral("PDF (*.pdf)") : QStringLiteral("CSV (*.csv)"));
    if (path.isEmpty()) {
        return;
    }
    failure = exportTo(path, pdf);
    if (!failure.isEmpty()) {
        QMessageBox::warning(this, toQString(CostReportExport::title), failure);
        return;
    }
    accept();
}

QString CostReportSheet::exportTo(const QString& path, bool pdf) {
    QString failure;
    const std::optional<ReportPeriod> chosen = period(failure);
    if (!chosen) {
        return failure;
    }
    Organization* organization = m_export.organization();
    if (organization == nullptr) {
        return QStringLiteral("There is no organization to report on");
    }
    if (pdf) {
        const CostReport report(m_context.store, *organization, *chosen, m_context.calendar);
        if (!CostReportPdf::write(report, m_context.store.logo(*organization), path, failure)) {
            return QStringLiteral("Could not write %1: %2").arg(path, failure);
        }
    } else if (const std::optional<std::string> problem =
                   m_export.writeCsv(*chosen, path.toStdString())) {
        return toQString(*problem);
    }
    return {};
}

} // namespace vorlane
