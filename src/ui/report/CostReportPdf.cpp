// SPDX-License-Identifier: GPL-3.0-or-later
#include "report/CostReportPdf.h"

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "money/CostReport.h"
#include "util/CurrencyFormat.h"
#include "util/DateText.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextDocument>
#include <QUrl>

namespace vorlane {

namespace {

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8).toHtmlEscaped();
}

QString money(const Decimal& amount) {
    return text(currencyFormatted(amount, {}, CurrencyDigits::all));
}

// Amounts are right-aligned and never broken over two lines.
QString cell(const QString& content, bool right = false) {
    return QStringLiteral("<td%1>%2</td>")
        .arg(right ? QStringLiteral(" align=\"right\" style=\"white-space: nowrap\"") : QString(),
             content);
}

QString html(const CostReport& report, bool hasLogo) {
    const UserCalendar& calendar = report.calendar();
    const auto date = [&](Instant instant) {
        return text(DateText::format(instant, DateText::Style::abbreviated, calendar));
    };
    const QString period = text(ReportPeriod::dateText(report.period().first()) + " \xE2\x80\x93 " +
                                ReportPeriod::dateText(report.period().last()));
    QString page = QStringLiteral("<html><body>");
    if (hasLogo) {
        page += QStringLiteral("<p><img src=\"vorlane-logo\" height=\"64\"></p>");
    }
    page += QStringLiteral("<h1>%1</h1><p>Cost report for %2</p>")
                .arg(text(report.organization().name), period);
    page += QStringLiteral(
        "<table width=\"100%\" cellspacing=\"0\" cellpadding=\"4\" border=\"1\">"
        "<tr><th>Service</th><th>Type</th><th>Provider</th><th>Billing</th><th>Per Period</th>"
        "<th>Monthly</th><th>Yearly</th><th>Paid</th><th>Due</th><th>Expires</th></tr>");
    QString payments;
    QString renewals;
    for (const CostReport::Row& row : report.rows()) {
        const ServiceRecord& service = *row.service;
        page += QStringLiteral("<tr>") + cell(text(service.title)) +
                cell(text(std::string(service.serviceType().label()))) +
                cell(text(service.provider)) +
                cell(text(std::string(service.billingCycle().label()))) +
                cell(money(row.chargePerPeriod), true) + cell(money(row.monthlyCost), true) +
                cell(money(row.yearlyCost), true) + cell(money(row.paidInPeriod), true) +
                cell(money(row.dueInPeriod), true) +
                cell(service.expirationDate ? date(*service.expirationDate) : QString()) +
                QStringLiteral("</tr>");
        for (const PaymentRecord* payment : row.payments) {
            payments += QStringLiteral("<tr>") + cell(date(payment->datePaid)) +
                        cell(text(service.title)) + cell(text(payment->note)) +
                        cell(money(payment->amount), true) + QStringLiteral("</tr>");
        }
        for (const Instant renewal : row.renewals) {
            renewals += QStringLiteral("<tr>") + cell(date(renewal)) + cell(text(service.title)) +
                        cell(money(row.chargePerPeriod), true) + QStringLiteral("</tr>");
        }
    }
    page += QStringLiteral("</table>");
    const QString listHead =
        QStringLiteral("<table width=\"100%\" cellspacing=\"0\" cellpadding=\"4\" border=\"1\">");
    if (!payments.isEmpty()) {
        page +=
            QStringLiteral("<h2>Payments</h2>") + listHead +
            QStringLiteral("<tr><th>Date</th><th>Service</th><th>Note</th><th>Amount</th></tr>") +
            payments + QStringLiteral("</table>");
    }
    if (!renewals.isEmpty()) {
        page += QStringLiteral("<h2>Renewals Due</h2>") + listHead +
                QStringLiteral("<tr><th>Date</th><th>Service</th><th>Charge</th></tr>") + renewals +
                QStringLiteral("</table>");
    }
    const CostReport::Totals& totals = report.totals();
    page += QStringLiteral("<h2>Totals</h2><table cellspacing=\"0\" cellpadding=\"4\">") +
            QStringLiteral("<tr><td>Monthly cost</td>") + cell(money(totals.monthlyCost), true) +
            QStringLiteral("</tr><tr><td>Yearly cost</td>") + cell(money(totals.yearlyCost), true) +
            QStringLiteral("</tr><tr><td>Paid in period</td>") +
            cell(money(totals.paidInPeriod), true) +
            QStringLiteral("</tr><tr><td>Due in period</td>") +
            cell(money(totals.dueInPeriod), true) + QStringLiteral("</tr></table>");
    return page + QStringLiteral("</body></html>");
}

} // namespace

bool CostReportPdf::write(const CostReport& report,
                          const std::optional<std::vector<std::uint8_t>>& logo, const QString& path,
                          QString& error) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = file.errorString();
        return false;
    }
    {
        QPdfWriter writer(&file);
        writer.setTitle(QString::fromStdString("Cost report: " + report.organization().name));
        writer.setCreator(QStringLiteral("Vorlane"));
        // Letter where paper is measured in inches, A4 everywhere else.
        const bool letter = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
        writer.setPageSize(QPageSize(letter ? QPageSize::Letter : QPageSize::A4));
        // Ten columns need the width of a landscape page.
        writer.setPageOrientation(QPageLayout::Landscape);
        writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
        writer.setResolution(300);

        QTextDocument document;
        QImage image;
        if (logo && image.loadFromData(logo->data(), static_cast<int>(logo->size()))) {
            document.addResource(QTextDocument::ImageResource, QUrl(QStringLiteral("vorlane-logo")),
                                 image);
        }
        QFont font = document.defaultFont();
        font.setPointSizeF(8);
        document.setDefaultFont(font);
        document.setHtml(html(report, !image.isNull()));

        QPainter painter(&writer);
        const QRect area = painter.viewport();
        const int footer = painter.fontMetrics().height() * 2;
        // The document is laid out in device pixels so that it fills the page whatever the
        // writer's resolution.
        document.documentLayout()->setPaintDevice(&writer);
        document.setPageSize(QSizeF(area.width(), area.height() - footer));
        const int pages = document.pageCount();
        for (int page = 0; page < pages; ++page) {
            if (page > 0) {
                writer.newPage();
            }
            painter.save();
            const QRectF slice(0, page * (area.height() - footer), area.width(),
                               area.height() - footer);
            painter.translate(0, -slice.top());
            document.drawContents(&painter, slice);
            painter.restore();
            painter.drawText(QRect(0, area.height() - footer, area.width(), footer),
                             Qt::AlignRight | Qt::AlignBottom,
                             QStringLiteral("Page %1 of %2").arg(page + 1).arg(pages));
        }
        if (!painter.end()) {
            error = QStringLiteral("the PDF could not be drawn");
            file.cancelWriting();
            return false;
        }
    }
    if (!file.commit()) {
        error = file.errorString();
        return false;
    }
    return true;
}

} // namespace vorlane
