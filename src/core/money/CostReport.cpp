// SPDX-License-Identifier: GPL-3.0-or-later
#include "money/CostReport.h"

#include "model/Organization.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "money/ChargePerPeriod.h"
#include "money/RenewalDates.h"
#include "store/DataStore.h"
#include "util/CsvText.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"

#include <algorithm>

namespace vorlane {

CostReport::CostReport(const DataStore& store, const Organization& organization,
                       ReportPeriod period, const UserCalendar& calendar)
    : m_organization(organization)
    , m_period(period)
    , m_calendar(calendar) {
    for (const ServiceRecord* service : organization.services) {
        if (service->isArchived) {
            continue;
        }
        Row row;
        row.service = service;
        row.chargePerPeriod = chargePerPeriod(*service);
        row.monthlyCost = store.effectiveMonthlyCost(*service);
        row.yearlyCost = service->yearlyCost > Decimal() ? service->yearlyCost
                                                         : service->monthlyCost * Decimal(12);
        for (const PaymentRecord* payment : store.fetchPayments(*service)) {
            if (period.contains(payment->datePaid)) {
                row.payments.push_back(payment);
                row.paidInPeriod += payment->amount;
            }
        }
        std::reverse(row.payments.begin(), row.payments.end());
        row.renewals = renewalDatesBetween(*service, period.start(), period.end(), calendar);
        row.dueInPeriod =
            row.chargePerPeriod * Decimal(static_cast<std::int64_t>(row.renewals.size()));
        m_totals.monthlyCost += row.monthlyCost;
        m_totals.yearlyCost += row.yearlyCost;
        m_totals.paidInPeriod += row.paidInPeriod;
        m_totals.dueInPeriod += row.dueInPeriod;
        m_rows.push_back(std::move(row));
    }
}

std::string CostReport::csv() const {
    std::string text = std::string(csvHeader) + "\r\n";
    for (const Row& row : m_rows) {
        const ServiceRecord& service = *row.service;
        for (const std::string& field :
             {service.title, service.serviceTypeRaw, service.provider, service.billingCycleRaw,
              row.chargePerPeriod.toString(), row.monthlyCost.toString(), row.yearlyCost.toString(),
              row.paidInPeriod.toString(), row.dueInPeriod.toString()}) {
            text += csvField(field) + ",";
        }
        text += (service.expirationDate ? DateText::isoDay(*service.expirationDate, m_calendar)
                                        : std::string()) +
                "\r\n";
    }
    text += "TOTAL,,,,," + m_totals.monthlyCost.toString() + "," + m_totals.yearlyCost.toString() +
            "," + m_totals.paidInPeriod.toString() + "," + m_totals.dueInPeriod.toString() +
            ",\r\n";
    return text;
}

} // namespace vorlane
