// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ServiceActions.h"

#include "app/AppState.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "money/ChargePerPeriod.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"
#include "util/Uuid.h"

#include <optional>
#include <string>
#include <utility>

namespace vorlane {

ServiceActions::ServiceActions(DataStore& store, AppState& state, const UserCalendar& calendar)
    : m_store(store)
    , m_state(state)
    , m_calendar(calendar) {}

PaymentRecord* ServiceActions::markRenewed(ServiceRecord& service) const {
    if (!service.expirationDate) {
        return nullptr;
    }
    const Instant renewedFrom = *service.expirationDate;
    // A year is twelve months to the calendar too: 29 February plus either is 28 February.
    service.expirationDate = m_calendar.adding(
        UserCalendar::Unit::month, service.billingCycle().renewalMonths(), *service.expirationDate);
    const Instant now = m_calendar.now();
    service.renewalDate = now;
    service.setStatus(ServiceStatus::active);
    service.updatedAt = now;
    m_store.noteChanged(service);
    PaymentRecord payment;
    payment.id = Uuid::generate();
    payment.datePaid = now;
    payment.periodFrom = renewedFrom;
    payment.periodTo = service.expirationDate;
    payment.amount = chargePerPeriod(service);
    PaymentRecord& recorded = m_store.insert(std::move(payment), service);
    m_store.save();
    return &recorded;
}

std::string ServiceActions::renewalNotice(const PaymentRecord& payment,
                                          const UserCalendar& calendar) {
    const std::string until =
        payment.periodTo
            ? DateText::format(*payment.periodTo, DateText::Style::abbreviated, calendar)
            : std::string();
    return "Renewed until " + until + " \xE2\x80\x94 " +
           currencyFormatted(payment.amount, {}, CurrencyDigits::all) + " recorded";
}

void ServiceActions::archive(ServiceRecord& service) const {
    service.isArchived = true;
    service.setStatus(ServiceStatus::archived);
    m_store.noteChanged(service);
}

void ServiceActions::restore(ServiceRecord& service) const {
    service.isArchived = false;
    service.setStatus(ServiceStatus::active);
    m_store.noteChanged(service);
}

void ServiceActions::edit(ServiceRecord& service) const {
    m_state.setEditingService(&service);
    m_state.setShowingNewService(true);
}

ServiceRecord* ServiceActions::duplicate(const ServiceRecord& source) const {
    ServiceRecord copy = source;
    copy.id = Uuid::generate();
    copy.organization = nullptr;
    copy.title += " (Copy)";
    // Re-read through the accessors: an unknown stored value becomes its fallback case.
    copy.setServiceType(source.serviceType());
    copy.setBillingCycle(source.billingCycle());
    copy.setRiskLevel(source.riskLevel());
    // A copy is a new, live service: an archived source does not make an archived copy.
    copy.setStatus(ServiceStatus::active);
    copy.isArchived = false;
    copy.createdAt = m_calendar.now();
    copy.updatedAt = copy.createdAt;
    // Fresh identifiers for both secrets, whatever the source holds: the copy must never share
    // an item with its source, or deleting one would take the other's secret along.
    copy.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    copy.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
    copy.totpKeychainID =
        source.totpKeychainID.empty() ? std::string() : ServiceRecord::makeTOTPKeychainID();

    // The secrets first, so that a refusal leaves neither a record nor a stray item behind.
    const std::optional<std::string> password = m_store.getPassword(source);
    const std::optional<std::string> apiKey = m_store.getAPIKey(source);
    const std::optional<std::string> totp = m_store.getTOTPSecret(source);
    const bool stored = (!password || m_store.setPassword(*password, copy)) &&
                        (!apiKey || m_store.setAPIKey(*apiKey, copy)) &&
                        (!totp || m_store.setTOTPSecret(*totp, copy));
    if (!stored) {
        m_store.deleteServiceSecrets(copy);
        return nullptr;
    }
    ServiceRecord& inserted = m_store.insert(std::move(copy), source.organization);
    m_store.save();
    m_state.setSelectedService(&inserted);
    return &inserted;
}

std::string ServiceActions::deleteConfirmationMessage(const ServiceRecord& service) {
    return "This will permanently delete \"" + service.title +
           "\" and its secrets. This cannot be undone.";
}

void ServiceActions::deleteService(ServiceRecord& service) const {
    m_state.forget(service);
    m_store.deleteService(service);
}

} // namespace vorlane
