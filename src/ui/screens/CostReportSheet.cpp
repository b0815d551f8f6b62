// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/CostReportSheet.h"

#include "QtText.h"
#include "app/AppContext.h"
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

namespace vorlane {

namespace {

std::chrono::year_month_day toDate(const QDate& date) {
    using namespace std::chrono;
    return year(date.year()) / month(static_cast<unsigned>(date.month())) /
           day(static_cast<unsigned>(date.day()));
}

} // namespace

CostReportSheet::CostReportSheet(AppContext& context, Organization& organization, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_organization(organization)
    , m_export(context.store, organization, context.calendar)
    , m_period(new QComboBox)
    , m_from(new QDateEdit)
    , m_to(new QDateEdit) {
    setWindowTitle(toQString(CostReportExport::title));
    setWindowModality(Qt::WindowModal);
    auto* form = new QFormLayout(this);
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
    QPushButton* csv =
        buttons->addButton(QStringLiteral("Export CSV\u2026"), QDialogButtonBox::AcceptRole);
    QPushButton* pdf =
        buttons->addButton(QStringLiteral("Export PDF\u2026"), QDialogButtonBox::AcceptRole);
    pdf->setDefault(true);
    connect(csv, &QPushButton::clicked, this, [this] { exportAs(false); });
    connect(pdf, &QPushButton::clicked, this, [this] { exportAs(true); });
    // The two export buttons decide for themselves when the sheet closes.
    disconnect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

void CostReportSheet::exportAs(bool pdf) {
    std::string error;
    const std::optional<ReportPeriod> period =
        m_export.period(static_cast<std::size_t>(m_period->currentIndex()), toDate(m_from->date()),
                        toDate(m_to->date()), error);
    if (!period) {
        QMessageBox::warning(this, toQString(CostReportExport::title), toQString(error));
        return;
    }
    const QString suggested =
        QDir::home().filePath(toQString(m_export.suggestedFileName(*period, pdf ? "pdf" : "csv")));
    const QString path = QFileDialog::getSaveFileName(
        this, toQString(CostReportExport::title), suggested,
        pdf ? QStringLiteral("PDF (*.pdf)") : QStringLiteral("CSV (*.csv)"));
    if (path.isEmpty()) {
        return;
    }
    QString failure;
    if (pdf) {
        const CostReport report(m_context.store, m_organization, *period, m_context.calendar);
        if (!CostReportPdf::write(report, m_context.store.logo(m_organization), path, failure)) {
            failure = QStringLiteral("Could not write %1: %2").arg(path, failure);
        }
    } else if (const std::optional<std::string> problem =
                   m_export.writeCsv(*period, path.toStdString())) {
        failure = toQString(*problem);
    }
    if (!failure.isEmpty()) {
        QMessageBox::warning(this, toQString(CostReportExport::title), failure);
        return;
    }
    accept();
}

} // namespace vorlane
