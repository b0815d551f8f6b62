// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RenewalScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "model/PaymentRecord.h"
#include "model/ServiceRecord.h"
#include "model/TimeGroup.h"
#include "money/ChargePerPeriod.h"
#include "screens/ServicePayments.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"

#include <algorithm>
#include <cstdlib>

namespace vorlane {

std::string_view renewalFilterTitle(RenewalFilter filter) {
    switch (filter) {
    case RenewalFilter::expiringSoon:
        return "Expiring Soon";
    case RenewalFilter::expired:
        return "Expired";
    case RenewalFilter::all:
        return "All Renewals";
    }
    return "All Renewals";
}

RenewalScreen::RenewalScreen(AppContext& context, RenewalFilter filter, Organization* organization)
    : m_context(context)
    , m_filter(filter)
    , m_organization(organization) {
    rebuild();
}

void RenewalScreen::rebuild() {
    m_services = fetch();
    m_bands = bandsOf(m_services, m_context.calendar);
}

std::vector<ServiceRecord*> RenewalScreen::fetch() const {
    std::vector<ServiceRecord*> services;
    switch (m_filter) {
    case RenewalFilter::expiringSoon:
        services = m_context.store.fetchExpiringSoon(expiringSoonDays);
        break;
    case RenewalFilter::expired:
        services = m_context.store.fetchExpired();
        break;
    case RenewalFilter::all:
        std::ranges::copy_if(m_context.store.fetchAllServices(false), std::back_inserter(services),
                             [](const ServiceRecord* s) { return s->expirationDate.has_value(); });
        // Stable: services expiring at the same instant keep the store's title order.
        std::ranges::stable_sort(services, {},
                                 [](const ServiceRecord* s) { return *s->expirationDate; });
        break;
    }
    if (m_organization != nullptr) {
        std::erase_if(services,
                      [this](const ServiceRecord* s) { return s->organization != m_organization; });
    }
    return services;
}

std::string RenewalScreen::countText() const {
    return std::to_string(m_services.size()) + " item(s)";
}

std::optional<EmptyState> RenewalScreen::emptyState() const {
    if (!m_bands.empty()) {
        return std::nullopt;
    }
    if (m_filter == RenewalFilter::expired) {
        return EmptyState{"xmark.circle", "Nothing Expired",
                          "No expired services. Great job keeping things current!", ""};
    }
    return EmptyState{"calendar.badge.clock", "All Clear",
                      "No services expiring soon. You're all up to date.", ""};
}

void RenewalScreen::markRenewed(ServiceRecord& service) {
    const Uuid serviceId = service.id;
    if (const PaymentRecord* payment = m_context.serviceActions.markRenewed(service)) {
        m_renewal.emplace(serviceId, payment->id);
    }
}

PaymentRecord* RenewalScreen::renewalPayment() const {
    if (!m_renewal) {
        return nullptr;
    }
    const ServiceRecord* service = m_context.store.service(m_renewal->first);
    if (service == nullptr) {
        return nullptr;
    }
    for (PaymentRecord* payment : m_context.store.fetchPayments(*service)) {
        if (payment->id == m_renewal->second) {
            return payment;
        }
    }
    return nullptr;
}

std::optional<std::string> RenewalScreen::renewalNotice() const {
    const PaymentRecord* payment = renewalPayment();
    if (payment == nullptr) {
        return std::nullopt;
    }
    return ServiceActions::renewalNotice(*payment, m_context.calendar);
}

std::string RenewalScreen::renewalAmountText() const {
    const PaymentRecord* payment = renewalPayment();
    return payment ? payment->amount.toString() : std::string();
}

std::optional<std::string> RenewalScreen::editRenewalAmount(std::string_view text) {
    PaymentRecord* payment = renewalPayment();
    if (payment == nullptr) {
        return std::nullopt;
    }
    const std::optional<Decimal> amount = ServicePayments::amountOf(text);
    if (!amount) {
        return std::string(ServicePayments::invalidAmount);
    }
    payment->amount = *amount;
    m_context.store.noteChanged(*payment);
    m_context.store.save();
    return std::nullopt;
}

void RenewalScreen::open(ServiceRecord& service) {
    m_context.state.setSelectedService(&service);
}

std::string RenewalScreen::daysText(int days) {
    return days < 0 ? std::to_string(std::abs(days)) + " days ago"
                    : std::to_string(days) + " days left";
}

std::vector<RenewalScreen::Band> RenewalScreen::bandsOf(const std::vector<ServiceRecord*>& services,
                                                        const UserCalendar& calendar) {
    std::vector<Band> bands;
    for (const TimeGroup& group : groupByTimeframe(services, calendar)) {
        Band band{group.title, static_cast<int>(group.services.size()), {}, {}, {}, {}};
        band.accessibleText = band.title + ", " + std::to_string(band.count) + " item(s)";
        if (const Decimal total = group.totalCost(); total > Decimal()) {
            band.totalCostText = currencyFormatted(total);
            band.accessibleText += ", " + band.totalCostText + " a month";
        }
        Decimal due;
        for (const ServiceRecord* service : group.services) {
            due += chargePerPeriod(*service);
        }
        if (due > Decimal()) {
            band.dueText = currencyFormatted(due, {}, CurrencyDigits::all) + " due";
            band.accessibleText += ", " + band.dueText;
        }
        band.accessibleText += ".";
        band.rows.reserve(group.services.size());
        for (ServiceRecord* service : group.services) {
            const ExpirationState state = service->expirationState(calendar);
            // Every service in a band has a date, so a missing count only means the calendar
            // could not give one; such a row says nothing rather than a wrong number.
            const std::optional<int> days = service->daysUntilExpiration(calendar);
            Row row{service,
                    state,
                    service->serviceType().icon(),
                    service->serviceType().tintColor(),
                    service->title,
                    days ? daysText(*days) : std::string(),
                    state.color(),
                    {},
                    {}};
            if (const Decimal charge = chargePerPeriod(*service); charge > Decimal()) {
                row.dueText = "Due: " + currencyFormatted(charge, {}, CurrencyDigits::all);
            }
            // Everything the row shows, the amount due included, so that a screen reader says it.
            row.accessibleText = row.title + ", " + std::string(service->serviceType().label()) +
                                 ". " + std::string(state.displayName());
            for (const std::string* shown : {&row.daysText, &row.dueText}) {
                if (!shown->empty()) {
                    row.accessibleText += ", " + *shown;
                }
            }
            row.accessibleText += ".";
            band.rows.push_back(std::move(row));
        }
        bands.push_back(std::move(band));
    }
    return bands;
}

} // namespace vorlane
