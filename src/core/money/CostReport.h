// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "money/ReportPeriod.h"
#include "util/Decimal.h"
#include "util/Instant.h"

#include <optional>
#include <string>
#include <vector>

namespace vorlane {

class DataStore;
struct Organization;
struct PaymentRecord;
struct ServiceRecord;
class UserCalendar;

// What one client's services cost over a period, to hand to the client or re-bill: per service
// its kind, provider, cycle, the charge of one period, the monthly and yearly cost the screens
// total, what was paid in the period and what fell due in it; and the sums. The same model
// writes the CSV here and the PDF in the window (and the CLI).
class CostReport {
public:
    struct Row {
        const ServiceRecord* service = nullptr;
        Decimal chargePerPeriod;
        Decimal monthlyCost; // the effective monthly cost
        Decimal yearlyCost;  // `yearlyCost` when set, else `monthlyCost` times 12
        Decimal paidInPeriod;
        Decimal dueInPeriod; // the charge of each renewal that falls in the period
        std::vector<const PaymentRecord*> payments; // in the period, oldest first
        std::vector<Instant> renewals;              // due in the period, ascending
    };
    struct Totals {
        Decimal monthlyCost;
        Decimal yearlyCost;
        Decimal paidInPeriod;
        Decimal dueInPeriod;
    };

    // Every service of the organization that is not archived, in the organization's order. Not
    // kept: the report is a snapshot, and its pointers are valid until the store next changes.
    CostReport(const DataStore& store, const Organization& organization, ReportPeriod period,
               const UserCalendar& calendar);

    const Organization& organization() const { return m_organization; }
    const ReportPeriod& period() const { return m_period; }
    const std::vector<Row>& rows() const { return m_rows; }
    const Totals& totals() const { return m_totals; }
    const UserCalendar& calendar() const { return m_calendar; }

    // The CSV a spreadsheet opens: a header naming the columns, one line per row and a last
    // line titled TOTAL with the sums (no charge per period there: charges of different cycles
    // do not add up). Amounts are exact decimal text with a "." and no currency sign; the kind and
    // cycle are their stored values; the expiration date is YYYY-MM-DD in the user's calendar.
    // Fields are quoted where they hold a comma, a quote or a line break; lines end with CRLF.
    std::string csv() const;

    static constexpr const char* csvHeader =
        "title,serviceType,provider,billingCycle,chargePerPeriod,monthlyCost,yearlyCost,"
        "paidInPeriod,dueInPeriod,expirationDate";

private:
    const Organization& m_organization;
    ReportPeriod m_period;
    const UserCalendar& m_calendar;
    std::vector<Row> m_rows;
    Totals m_totals;
};

} // namespace vorlane
