// SPDX-License-Identifier: GPL-3.0-or-later
// The Payments section of a service on a real vault: newest first with the total, corrections
// and additions checked where they are typed and kept in the file, deletion after confirmation.

#include "screens/ServicePayments.h"

#include "VaultFixture.h"

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

class ServicePaymentsTest : public VaultFixture {};

TEST_F(ServicePaymentsTest, ListsNewestFirstAndKeepsEveryCorrectionInTheFile) {
    open();
    ServiceRecord& domain = addService(addOrganization("Acme"), "acme.example");
    PaymentRecord renewal;
    renewal.id = Uuid::generate();
    renewal.datePaid = utc(2024, 3, 15, 11);
    renewal.periodFrom = utc(2024, 3, 15, 11);
    renewal.periodTo = utc(2025, 3, 15, 11);
    renewal.amount = Decimal(15);
    m_store->insert(renewal, domain);

    ServicePayments section(*m_store, domain, m_calendar);
    ASSERT_EQ(section.rows().size(), 1u);
    EXPECT_EQ(section.rows()[0].periodText, "Mar 15, 2024 \u2013 Mar 15, 2025");
    EXPECT_EQ(section.totalText(), "Total paid: $15.00");

    // Typed wrong: said where, nothing added or changed.
    EXPECT_EQ(section.add("12,50", "Invoice 7"), "Not a valid amount");
    EXPECT_EQ(section.add("-3", ""), "Not a valid amount");
    EXPECT_EQ(section.rows().size(), 1u);
    EXPECT_EQ(section.add(" 12.50 ", "Invoice 7"), std::nullopt);
    ASSERT_EQ(section.rows().size(), 2u);
    EXPECT_EQ(section.rows()[0].dateText, "Mar 20, 2025") << "made now, so listed first";
    EXPECT_EQ(section.rows()[0].accessibleText, "Mar 20, 2025, $12.50, Invoice 7.");
    EXPECT_EQ(section.rows()[0].periodText, "");
    EXPECT_EQ(section.totalText(), "Total paid: $27.50");

    PaymentRecord& first = *section.rows()[1].payment;
    EXPECT_EQ(section.setAmount(first, "fifteen"), "Not a valid amount");
    EXPECT_EQ(first.amount, Decimal(15));
    EXPECT_EQ(section.setAmount(first, "16.25"), std::nullopt);
    section.setNote(first, "Registrar invoice");
    EXPECT_EQ(section.totalText(), "Total paid: $28.75");

    const Uuid id = domain.id;
    DataStore& reopened = reopen();
    ServicePayments again(reopened, *reopened.service(id), m_calendar);
    ASSERT_EQ(again.rows().size(), 2u);
    EXPECT_EQ(again.rows()[1].amountText, "$16.25");
    EXPECT_EQ(again.rows()[1].note, "Registrar invoice");

    PaymentRecord& added = *again.rows()[0].payment;
    EXPECT_EQ(again.deleteConfirmationMessage(added),
              "Delete the payment of $12.50 made on Mar 20, 2025? This cannot be undone.");
    again.remove(added);
    EXPECT_EQ(again.rows().size(), 1u);
    EXPECT_EQ(again.totalText(), "Total paid: $16.25");
    EXPECT_FALSE(reopened.hasUnsavedChanges()) << "a deletion is saved at once";
    SqliteConnection db = raw();
    EXPECT_EQ(db.queryInteger("SELECT COUNT(*) FROM payments"), 1);
}

} // namespace
} // namespace vorlane::testing
