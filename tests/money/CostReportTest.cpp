// SPDX-License-Identifier: GPL-3.0-or-later
// The cost report of one client over a period: which payments and renewals fall inside it (at
// its first and last moments, in the user's zone), the sums, and the CSV exactly as written.

#include "money/CostReport.h"

#include "VaultFixture.h"
#include "money/ReportPeriod.h"
#include "screens/CostReportExport.h"

#include <chrono>
#include <filesystem>

namespace vorlane::testing {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

class CostReportTest : public VaultFixture {
protected:
    CostReportTest() { open(); }

    ServiceRecord& service(Organization& owner, const std::string& title, BillingCycle cycle,
                           const char* monthly, const char* yearly,
                           std::optional<Instant> expiration) {
        ServiceRecord& record = addService(owner, title);
        return change(record, [&](ServiceRecord& s) {
            s.setBillingCycle(cycle);
            s.monthlyCost = *Decimal::fromString(monthly);
            s.yearlyCost = *Decimal::fromString(yearly);
            s.expirationDate = expiration;
        });
    }

    void pay(ServiceRecord& service, Instant when, const char* amount) {
        PaymentRecord payment;
        payment.id = Uuid::generate();
        payment.datePaid = when;
        payment.amount = *Decimal::fromString(amount);
        m_store->insert(payment, service);
    }

    ReportPeriod period(const char* first, const char* last) {
        return *ReportPeriod::between(*ReportPeriod::parseDate(first),
                                      *ReportPeriod::parseDate(last), m_calendar);
    }
};

TEST_F(CostReportTest, PresetsAreWholeDaysOfTheUsersCalendar) {
    // The fixture's clock stands at 2025-03-20 12:00 UTC; the calendar is Europe/Berlin.
    const auto dates = [&](ReportPeriod::Preset preset) {
        const ReportPeriod p = *ReportPeriod::preset(preset, m_calendar);
        return ReportPeriod::dateText(p.first()) + " " + ReportPeriod::dateText(p.last());
    };
    EXPECT_EQ(dates(ReportPeriod::Preset::thisMonth), "2025-03-01 2025-03-31");
    EXPECT_EQ(dates(ReportPeriod::Preset::lastMonth), "2025-02-01 2025-02-28");
    EXPECT_EQ(dates(ReportPeriod::Preset::thisQuarter), "2025-01-01 2025-03-31");
    EXPECT_EQ(dates(ReportPeriod::Preset::thisYear), "2025-01-01 2025-12-31");
    EXPECT_EQ(dates(ReportPeriod::Preset::lastYear), "2024-01-01 2024-12-31");
    // Berlin's midnight, an hour before UTC's in winter and two in summer (from 30 March).
    const ReportPeriod march = *ReportPeriod::preset(ReportPeriod::Preset::thisMonth, m_calendar);
    EXPECT_EQ(march.start(), utc(2025, 2, 28, 23));
    EXPECT_EQ(march.end(), utc(2025, 3, 31, 22));

    EXPECT_FALSE(ReportPeriod::parseDate("2025-02-29"));
    EXPECT_FALSE(ReportPeriod::parseDate("2025-2-01"));
    EXPECT_FALSE(ReportPeriod::parseDate("2025-02-01x"));
    EXPECT_FALSE(ReportPeriod::parseDate("2025/02/01"));
    EXPECT_TRUE(ReportPeriod::parseDate("2024-02-29"));
    EXPECT_FALSE(ReportPeriod::between(*ReportPeriod::parseDate("2025-02-02"),
                                       *ReportPeriod::parseDate("2025-02-01"), m_calendar));
}

TEST_F(CostReportTest, PaymentsAndRenewalsCountFromTheFirstToTheLastMomentOfThePeriod) {
    Organization& acme = addOrganization("Acme");
    // Due at 00:00 and at 23:59 Berlin time on the period's first and last days.
    ServiceRecord& first =
        service(acme, "First", BillingCycle::annual, "0", "15", utc(2025, 2, 28, 23));
    ServiceRecord& last =
        service(acme, "Last", BillingCycle::annual, "0", "20", utc(2025, 3, 31, 21, 59));
    ServiceRecord& after =
        service(acme, "After", BillingCycle::annual, "0", "40", utc(2025, 3, 31, 22));
    pay(first, utc(2025, 2, 28, 22, 59), "1"); // 23:59 on the day before
    pay(first, utc(2025, 2, 28, 23), "2");     // the first moment
    pay(last, utc(2025, 3, 31, 21, 59), "4");  // the last minute
    pay(after, utc(2025, 3, 31, 22), "8");     // midnight after

    const CostReport report(*m_store, acme, period("2025-03-01", "2025-03-31"), m_calendar);
    ASSERT_EQ(report.rows().size(), 3u);
    EXPECT_EQ(report.rows()[0].paidInPeriod.toString(), "2");
    EXPECT_EQ(report.rows()[0].dueInPeriod.toString(), "15");
    EXPECT_EQ(report.rows()[1].paidInPeriod.toString(), "4");
    EXPECT_EQ(report.rows()[1].dueInPeriod.toString(), "20");
    EXPECT_EQ(report.rows()[2].paidInPeriod.toString(), "0");
    EXPECT_EQ(report.rows()[2].dueInPeriod.toString(), "0");
    EXPECT_EQ(report.totals().paidInPeriod.toString(), "6");
    EXPECT_EQ(report.totals().dueInPeriod.toString(), "35");
}

TEST_F(CostReportTest, RecurringChargesFallDueEveryPeriodSinceThePurchase) {
    Organization& acme = addOrganization("Acme");
    // Monthly from the 31st: the last day of each shorter month, counted from the expiration.
    service(acme, "Hosting", BillingCycle::monthly, "9.99", "0", utc(2025, 1, 31, 10));
    ServiceRecord& bought =
        service(acme, "Bought in May", BillingCycle::quarterly, "5", "0", utc(2025, 11, 15, 10));
    change(bought, [&](ServiceRecord& s) { s.purchaseDate = utc(2025, 6, 1); });
    service(acme, "Setup", BillingCycle::oneTime, "0", "500", utc(2025, 6, 1, 10));
    service(acme, "No date", BillingCycle::annual, "0", "100", std::nullopt);

    const CostReport report(*m_store, acme, period("2025-01-01", "2025-12-31"), m_calendar);
    ASSERT_EQ(report.rows().size(), 4u);
    const CostReport::Row& monthly = report.rows()[0];
    ASSERT_EQ(monthly.renewals.size(), 12u);
    EXPECT_EQ(monthly.renewals[1], utc(2025, 2, 28, 10));
    EXPECT_EQ(monthly.renewals[3], utc(2025, 4, 30, 9)); // summer time: 11:00 in Berlin
    EXPECT_EQ(monthly.dueInPeriod.toString(), "119.88");
    // Quarterly from 15 November back to the purchase on 1 June: August and November.
    EXPECT_EQ(report.rows()[1].renewals.size(), 2u);
    EXPECT_EQ(report.rows()[1].dueInPeriod.toString(), "30");
    EXPECT_EQ(report.rows()[2].dueInPeriod.toString(), "500");
    EXPECT_EQ(report.rows()[3].dueInPeriod.toString(), "0");
    EXPECT_EQ(report.totals().dueInPeriod.toString(), "649.88");
}

TEST_F(CostReportTest, TheCsvHasTheNamedColumnsEveryServiceButTheArchivedAndATotal) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& domain =
        service(acme, "acme.example", BillingCycle::annual, "0", "15", utc(2025, 3, 25, 9));
    change(domain, [](ServiceRecord& s) {
        s.setServiceType(ServiceType::domainRegistrar);
        s.provider = "Gandi, SAS";
    });
    ServiceRecord& hosting =
        service(acme, "Web \"prod\"", BillingCycle::quarterly, "10.5", "0", std::nullopt);
    change(hosting, [](ServiceRecord& s) { s.setServiceType(ServiceType::sharedHosting); });
    ServiceRecord& old = service(acme, "Old", BillingCycle::monthly, "99", "0", std::nullopt);
    change(old, [](ServiceRecord& s) { s.isArchived = true; });
    pay(domain, utc(2025, 3, 20), "15.00");
    pay(hosting, utc(2025, 1, 2), "31.5");
    pay(hosting, utc(2024, 12, 31), "31.5"); // the year before

    const CostReport report(*m_store, acme, period("2025-01-01", "2025-12-31"), m_calendar);
    EXPECT_EQ(report.csv(),
              "title,serviceType,provider,billingCycle,chargePerPeriod,monthlyCost,yearlyCost,"
              "paidInPeriod,dueInPeriod,expirationDate\r\n"
              "acme.example,domainRegistrar,\"Gandi, SAS\",annual,15,1.25,15,15,15,2025-03-25\r\n"
              "\"Web \"\"prod\"\"\",sharedHosting,,quarterly,31.5,10.5,126,31.5,0,\r\n"
              "TOTAL,,,,,11.75,141,46.5,15,\r\n");
    // The sums are the organization's own figures, as the screens show them.
    EXPECT_EQ(report.totals().monthlyCost, m_store->monthlyCost(acme));
    EXPECT_EQ(report.totals().yearlyCost, m_store->yearlyCost(acme));
}

TEST_F(CostReportTest, TheExportSheetNamesTheFileAndWritesTheCsvWhole) {
    Organization& acme = addOrganization("Acme/West");
    service(acme, "Site", BillingCycle::monthly, "5", "0", std::nullopt);
    const CostReportExport sheet(*m_store, acme, m_calendar);
    std::string error;
    const std::optional<ReportPeriod> year =
        sheet.period(CostReportExport::thisYearChoice, {}, {}, error);
    ASSERT_TRUE(year);
    EXPECT_EQ(sheet.suggestedFileName(*year, "pdf"),
              "Acme-West cost report 2025-01-01 to 2025-12-31.pdf");
    EXPECT_FALSE(sheet.period(CostReportExport::customChoice,
                              *ReportPeriod::parseDate("2025-03-02"),
                              *ReportPeriod::parseDate("2025-03-01"), error));
    EXPECT_EQ(error, "The end date is before the start date");

    const std::string path = m_folder + "/report.csv";
    EXPECT_EQ(sheet.writeCsv(*year, path), std::nullopt);
    EXPECT_EQ(fileBytes(path), CostReport(*m_store, acme, *year, m_calendar).csv());
    const std::optional<std::string> failed = sheet.writeCsv(*year, m_folder + "/none/r.csv");
    ASSERT_TRUE(failed);
    EXPECT_NE(failed->find("Could not write " + m_folder + "/none/r.csv"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(m_folder + "/none/r.csv.part"));
}

// From the expense screen the sheet picks the client: the organizations not archived, by name,
// starting at the one given; the file written is then the chosen client's.
TEST_F(CostReportTest, TheExportSheetFromTheExpenseScreenChoosesTheClient) {
    Organization& zeta = addOrganization("Zeta");
    Organization& acme = addOrganization("Acme");
    Organization& gone = addOrganization("Gone");
    change(gone, [](Organization& o) { o.isArchived = true; });
    service(zeta, "Zeta site", BillingCycle::monthly, "5", "0", std::nullopt);
    service(acme, "Acme site", BillingCycle::monthly, "7", "0", std::nullopt);
    const auto names = [](const CostReportExport& sheet) {
        std::vector<std::string> result;
        for (const Organization* organization : sheet.organizationChoices()) {
            result.push_back(organization->name);
        }
        return result;
    };

    CostReportExport first(*m_store, m_calendar, nullptr);
    EXPECT_TRUE(first.choosesOrganization());
    EXPECT_EQ(names(first), (std::vector<std::string>{"Acme", "Zeta"}));
    EXPECT_EQ(first.organization(), &acme);
    // An archived organization is not among the choices, so the picker starts at the first.
    EXPECT_EQ(CostReportExport(*m_store, m_calendar, &gone).organization(), &acme);

    CostReportExport sheet(*m_store, m_calendar, &zeta);
    EXPECT_EQ(sheet.organizationChoice(), 1U);
    EXPECT_EQ(sheet.organization(), &zeta);
    sheet.chooseOrganization(0);
    sheet.chooseOrganization(2); // past the end: still Acme
    EXPECT_EQ(sheet.organization(), &acme);
    std::string error;
    const ReportPeriod year = *sheet.period(CostReportExport::thisYearChoice, {}, {}, error);
    EXPECT_EQ(sheet.suggestedFileName(year, "csv"),
              "Acme cost report 2025-01-01 to 2025-12-31.csv");
    const std::string path = m_folder + "/acme.csv";
    ASSERT_EQ(sheet.writeCsv(year, path), std::nullopt);
    EXPECT_EQ(fileBytes(path), CostReport(*m_store, acme, year, m_calendar).csv());
    EXPECT_NE(fileBytes(path).find("Acme site"), std::string::npos);
    EXPECT_EQ(fileBytes(path).find("Zeta site"), std::string::npos);

    // An organization's own sheet offers no other.
    const CostReportExport own(*m_store, zeta, m_calendar);
    EXPECT_FALSE(own.choosesOrganization());
    EXPECT_EQ(own.organization(), &zeta);

    // Nothing to choose: nothing to report on.
    change(acme, [](Organization& o) { o.isArchived = true; });
    change(zeta, [](Organization& o) { o.isArchived = true; });
    EXPECT_EQ(CostReportExport(*m_store, m_calendar, nullptr).organization(), nullptr);
}

} // namespace
} // namespace vorlane::testing
