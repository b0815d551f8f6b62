// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Decimal.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class DataStore;
struct PaymentRecord;
struct ServiceRecord;
class UserCalendar;

// The "Payments" section of a service's detail: what was paid, newest first, with the total;
// the amount and note of a payment corrected, a payment deleted after confirmation, and "Add
// Payment" for one made outside Vorlane. Rows point into the store and are valid until its next
// change; `rebuild` re-reads. Main thread; the store, service and calendar must outlive it.
class ServicePayments {
public:
    static constexpr std::string_view title = "Payments";
    static constexpr std::string_view addTitle = "Add Payment";
    static constexpr std::string_view invalidAmount = "Not a valid amount";

    struct Row {
        PaymentRecord* payment;
        std::string dateText;   // "Mar 15, 2026", when it was paid
        std::string amountText; // "$15.00"
        std::string periodText; // "Mar 15, 2026 – Mar 15, 2027"; empty without a period
        std::string note;
        std::string accessibleText; // "Mar 15, 2026, $15.00, Invoice 114."
    };

    ServicePayments(DataStore& store, ServiceRecord& service, const UserCalendar& calendar);

    void rebuild();
    const std::vector<Row>& rows() const { return m_rows; }
    // "Total paid: $30.00"
    const std::string& totalText() const { return m_totalText; }
    // Shown instead of the rows when there are none.
    static constexpr std::string_view emptyText = "No payments recorded.";

    // Each returns nothing when done, else the error to show where the amount was typed; nothing
    // is changed then. An amount is plain decimal text, not negative ("15", "15.00").
    std::optional<std::string> setAmount(PaymentRecord& payment, std::string_view text);
    void setNote(PaymentRecord& payment, std::string_view note);
    std::optional<std::string> add(std::string_view amount, std::string_view note);
    // "Delete the payment of $15.00 made on Mar 15, 2026? This cannot be undone."
    std::string deleteConfirmationMessage(const PaymentRecord& payment) const;
    void remove(PaymentRecord& payment);

    // An amount as typed for a payment, wherever one is corrected: plain decimal text, not
    // negative, white space around it ignored. Nothing for anything else.
    static std::optional<Decimal> amountOf(std::string_view text);

private:
    DataStore& m_store;
    ServiceRecord& m_service;
    const UserCalendar& m_calendar;
    std::vector<Row> m_rows;
    std::string m_totalText;
};

} // namespace vorlane
