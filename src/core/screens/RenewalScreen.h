// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ExpirationState.h"
#include "model/Palette.h"
#include "screens/EmptyState.h"
#include "screens/RenewalFilter.h"
#include "util/Uuid.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

struct AppContext;
struct Organization;
struct PaymentRecord;
struct ServiceRecord;
class UserCalendar;

// The renewal screen: services by how soon they expire, in bands ("Expired", "Critical (1 day)",
// "This Week", "This Month", "Later") each with its count and monthly cost, every row with its
// days left and "Mark Renewed". Shown for "Expiring Soon" and "Expired", and with `all` for one
// organization's Renewals tab. `rebuild` re-reads the store (and the clock); rows point into the
// store and are valid until its next change. Main thread; the context must outlive the screen.
class RenewalScreen {
public:
    // The horizon of "Expiring Soon", whatever the expiration-warning preference says.
    static constexpr int expiringSoonDays = 30;
    static constexpr std::string_view markRenewedTitle = "Mark Renewed";

    struct Row {
        ServiceRecord* service;
        ExpirationState expiration; // the badge: its label, icon and colour
        std::string_view typeIcon;
        Palette::Color typeTint;
        std::string title;
        std::string daysText; // "12 days left", "3 days ago"
        Palette::Color daysColor;
        std::string dueText; // "Due: $15.00", the charge of the coming period; empty when none
        // "Main VPS, VPS. Expiring Soon, 12 days left, Due: $15.00."
        std::string accessibleText;
    };

    struct Band {
        std::string title;
        int count;
        std::string totalCostText; // monthly, formatted; empty when the band costs nothing
        std::string dueText;       // "$55.00 due": the rows' charges; empty when nothing is due
        std::vector<Row> rows;
        std::string accessibleText; // "This Week, 3 item(s), $40 a month, $55.00 due."
    };

    // With an organization, only its services (the organization detail's Renewals tab).
    RenewalScreen(AppContext& context, RenewalFilter filter, Organization* organization = nullptr);

    void rebuild();

    RenewalFilter filter() const { return m_filter; }
    std::string_view title() const { return renewalFilterTitle(m_filter); }
    // The filter's services in the filter's order.
    const std::vector<ServiceRecord*>& filteredServices() const { return m_services; }
    // "<count> item(s)"
    std::string countText() const;
    const std::vector<Band>& bands() const { return m_bands; }
    // "All Clear" or "Nothing Expired" when there is no band to show; no action.
    std::optional<EmptyState> emptyState() const;

    // The row's button: one billing period more (see ServiceActions::markRenewed). The schedule of
    // reminders is left as it is until the next start.
    void markRenewed(ServiceRecord& service);
    static constexpr std::string_view editAmountTitle = "Edit Amount";
    // After a renewal: "Renewed until <date> — $15.00 recorded", with "Edit Amount" to correct
    // what was recorded. Nothing before one, or once its payment or service is gone.
    std::optional<std::string> renewalNotice() const;
    // The recorded amount as it stands, for the amount field ("15", exact).
    std::string renewalAmountText() const;
    // Corrects the recorded amount: nothing when done, else the error to show by the field
    // ("Not a valid amount"), and the payment keeps its amount.
    std::optional<std::string> editRenewalAmount(std::string_view text);
    // A row chosen: the service's detail.
    void open(ServiceRecord& service);

    // "<n> days left", or "<-n> days ago" once n is negative.
    static std::string daysText(int days);
    // The bands of `services` as this screen shows them, for screens that list renewals their own
    // way.
    static std::vector<Band> bandsOf(const std::vector<ServiceRecord*>& services,
                                     const UserCalendar& calendar);

private:
    std::vector<ServiceRecord*> fetch() const;
    PaymentRecord* renewalPayment() const;

    AppContext& m_context;
    RenewalFilter m_filter;
    Organization* m_organization;
    std::vector<ServiceRecord*> m_services;
    std::vector<Band> m_bands;
    // The payment the last renewal recorded, by ids: the store may have deleted it since.
    std::optional<std::pair<Uuid, Uuid>> m_renewal; // service, payment
};

} // namespace vorlane
