// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ServicePayments.h"

#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"
#include "util/Whitespace.h"

namespace vorlane {

namespace {

std::string money(const Decimal& amount) {
    return currencyFormatted(amount, {}, CurrencyDigits::all);
}

} // namespace

ServicePayments::ServicePayments(DataStore& store, ServiceRecord& service,
                                 const UserCalendar& calendar)
    : m_store(store)
    , m_service(service)
    , m_calendar(calendar) {
    rebuild();
}

void ServicePayments::rebuild() {
    m_rows.clear();
    Decimal total;
    const auto date = [this](Instant instant) {
        return DateText::format(instant, DateText::Style::abbreviated, m_calendar);
    };
    for (PaymentRecord* payment : m_store.fetchPayments(m_service)) {
        Row row{payment, date(payment->datePaid), money(payment->amount), {}, payment->note, {}};
        if (payment->periodFrom && payment->periodTo) {
            row.periodText =
                date(*payment->periodFrom) + " \xE2\x80\x93 " + date(*payment->periodTo);
        }
        row.accessibleText =
            row.dateText + ", " + row.amountText + (row.note.empty() ? "." : ", " + row.note + ".");
        total += payment->amount;
        m_rows.push_back(std::move(row));
    }
    m_totalText = "Total paid: " + money(total);
}

std::optional<Decimal> ServicePayments::amountOf(std::string_view text) {
    const std::optional<Decimal> amount = Decimal::fromString(trimmed(text));
    if (!amount || amount->isNegative()) {
        return std::nullopt;
    }
    return amount;
}

std::optional<std::string> ServicePayments::setAmount(PaymentRecord& payment,
                                                      std::string_view text) {
    const std::optional<Decimal> amount = amountOf(text);
    if (!amount) {
        return std::string(invalidAmount);
    }
    payment.amount = *amount;
    m_store.noteChanged(payment);
    rebuild();
    return std::nullopt;
}

void ServicePayments::setNote(PaymentRecord& payment, std::string_view note) {
    payment.note = std::string(note);
    m_store.noteChanged(payment);
    rebuild();
}

std::optional<std::string> ServicePayments::add(std::string_view amount, std::string_view note) {
    const std::optional<Decimal> value = amountOf(amount);
    if (!value) {
        return std::string(invalidAmount);
    }
    PaymentRecord payment;
    payment.id = Uuid::generate();
    payment.datePaid = m_calendar.now();
    payment.amount = *value;
    payment.note = std::string(note);
    m_store.insert(std::move(payment), m_service);
    m_store.save();
    rebuild();
    return std::nullopt;
}

std::string ServicePayments::deleteConfirmationMessage(const PaymentRecord& payment) const {
    return "Delete the payment of " + money(payment.amount) + " made on " +
           DateText::format(payment.datePaid, DateText::Style::abbreviated, m_calendar) +
           "? This cannot be undone.";
}

void ServicePayments::remove(PaymentRecord& payment) {
    m_store.deletePayment(payment);
    rebuild();
}

} // namespace vorlane
