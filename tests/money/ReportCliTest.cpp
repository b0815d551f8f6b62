// SPDX-License-Identifier: GPL-3.0-or-later
// vorlane-cli report on a real vault: the CSV of a period, the PDF read back by poppler's
// pdftotext (its totals) and drawn by pdftoppm, and the refusals.

#include "RunCommand.h"
#include "VaultFixture.h"

#include <filesystem>

namespace vorlane::testing {
namespace {

class ReportCliTest : public VaultFixture {
protected:
    ReportCliTest() {
        open();
        Organization& acme = addOrganization("Acme & Sons");
        ServiceRecord& domain = change(addService(acme, "acme.example"), [](ServiceRecord& s) {
            s.setBillingCycle(BillingCycle::annual);
            s.yearlyCost = Decimal(15);
            s.expirationDate = utc(2025, 6, 1, 10);
        });
        ServiceRecord& hosting = change(addService(acme, "Hosting"), [](ServiceRecord& s) {
            s.setBillingCycle(BillingCycle::monthly);
            s.monthlyCost = *Decimal::fromString("20.5");
            s.provider = "Hetzner";
        });
        for (const auto& [service, when, amount] :
             {std::tuple{&domain, utc(2025, 6, 1, 9), "15"},
              std::tuple{&hosting, utc(2025, 1, 3), "20.5"},
              std::tuple{&hosting, utc(2024, 12, 3), "20.5"}}) {
            PaymentRecord payment;
            payment.id = Uuid::generate();
            payment.datePaid = when;
            payment.amount = *Decimal::fromString(amount);
            payment.note = "Invoice " + std::to_string(toMilliseconds(when));
            m_store->insert(payment, *service);
        }
        addOrganization("Other");
        EXPECT_TRUE(m_store->save());
        m_store.reset();
    }

    static std::int64_t toMilliseconds(Instant instant) {
        return instant.time_since_epoch().count();
    }

    CommandRun report(const std::string& arguments) {
        return runCommand("env TZ=Europe/Berlin LANG=en_US.UTF-8 LC_ALL=en_US.UTF-8 " +
                          std::string(VORLANE_CLI) + " --vault " + shellWord(m_path) + " report " +
                          arguments);
    }
};

TEST_F(ReportCliTest, WritesTheCsvOfTheGivenDaysBothIncluded) {
    const auto [status, out, err] =
        report("--organization 'Acme & Sons' --from 2025-01-01 --to 2025-06-01 --csv");
    EXPECT_EQ(status, 0) << err;
    EXPECT_EQ(out, "title,serviceType,provider,billingCycle,chargePerPeriod,monthlyCost,"
                   "yearlyCost,paidInPeriod,dueInPeriod,expirationDate\r\n"
                   "acme.example,customSecret,,annual,15,1.25,15,15,15,2025-06-01\r\n"
                   "Hosting,customSecret,Hetzner,monthly,20.5,20.5,246,20.5,0,\r\n"
                   "TOTAL,,,,,21.75,261,35.5,15,\r\n");
    // The day before the renewal leaves it and its payment out.
    const CommandRun earlier =
        report("--organization 'Acme & Sons' --from 2025-01-01 --to 2025-05-31 --csv");
    EXPECT_NE(earlier.out.find("\r\nTOTAL,,,,,21.75,261,20.5,0,\r\n"), std::string::npos)
        << earlier.out;
}

TEST_F(ReportCliTest, WritesAPdfWhoseTextHasTheClientThePaymentsAndTheTotals) {
    const std::string pdf = m_folder + "/acme report.pdf";
    const auto [status, out, err] = report(
        "--organization 'Acme & Sons' --from 2025-01-01 --to 2025-12-31 --pdf " + shellWord(pdf));
    ASSERT_EQ(status, 0) << err;
    EXPECT_EQ(out, "");
    const CommandRun text = runReferenceTool("pdftotext -layout " + shellWord(pdf) + " -");
    ASSERT_EQ(text.status, 0) << text.err;
    for (const char* expected :
         {"Acme & Sons", "2025-01-01 \u2013 2025-12-31", "acme.example", "Hetzner",
          "Invoice 1748768400000", "Jun 1, 2025", "Page 1 of 1"}) {
        EXPECT_NE(text.out.find(expected), std::string::npos) << expected << "\n" << text.out;
    }
    EXPECT_EQ(text.out.find("Invoice 1733184000000"), std::string::npos)
        << "a payment of the year before";
    // The totals as the CSV has them: monthly, yearly, paid and due.
    const auto valueAfter = [&](const std::string& label) {
        const std::size_t at = text.out.find(label);
        if (at == std::string::npos) {
            return std::string("(no " + label + ")");
        }
        const std::size_t start = text.out.find_first_not_of(' ', at + label.size());
        return text.out.substr(start, text.out.find('\n', start) - start);
    };
    EXPECT_EQ(valueAfter("Monthly cost"), "$21.75");
    EXPECT_EQ(valueAfter("Yearly cost"), "$261.00");
    EXPECT_EQ(valueAfter("Paid in period"), "$35.50");
    EXPECT_EQ(valueAfter("Due in period"), "$15.00");
    const CommandRun image = runReferenceTool("pdftoppm -png -r 40 -f 1 -l 1 " + shellWord(pdf) +
                                              " " + shellWord(m_folder + "/page"));
    ASSERT_EQ(image.status, 0) << image.err;
    const std::string png = readFile(m_folder + "/page-1.png");
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_GT(png.size(), 2000u) << "a page with something drawn on it";
}

TEST_F(ReportCliTest, RefusesWhatItCannotReportWithoutWritingAFile) {
    const std::string pdf = m_folder + "/none.pdf";
    EXPECT_EQ(report("--organization Nobody --csv").status, 1);
    EXPECT_NE(report("--organization Nobody --csv").err.find("no organization is called"),
              std::string::npos);
    EXPECT_EQ(report("--organization Other --from 2025-02-30 --to 2025-03-01 --csv").status, 2);
    EXPECT_EQ(report("--organization Other --from 2025-03-02 --to 2025-03-01 --csv").status, 2);
    EXPECT_EQ(report("--organization Other --from 2025-03-01 --csv").status, 2);
    EXPECT_EQ(report("--organization Other").status, 2) << "neither --csv nor --pdf";
    EXPECT_EQ(report("--organization Other --csv --pdf " + shellWord(pdf)).status, 2);
    EXPECT_EQ(
        report("--organization Other --pdf " + shellWord(m_folder + "/no/such/dir.pdf")).status, 1);
    EXPECT_FALSE(std::filesystem::exists(pdf));
    // With no dates: this year, and an organization without services is a header and a total.
    const CommandRun empty = report("--organization Other --csv");
    EXPECT_EQ(empty.status, 0) << empty.err;
    EXPECT_EQ(empty.out,
              std::string("title,serviceType,provider,billingCycle,chargePerPeriod,monthlyCost,"
                          "yearlyCost,paidInPeriod,dueInPeriod,expirationDate\r\n"
                          "TOTAL,,,,,0,0,0,0,\r\n"));
}

} // namespace
} // namespace vorlane::testing
