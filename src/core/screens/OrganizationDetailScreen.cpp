// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationDetailScreen.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"
#include "money/CostReport.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"
#include "util/DateText.h"
#include "util/UserCalendar.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>

namespace vorlane {

namespace {

constexpr std::size_t recentlyUpdatedCount = 5;
constexpr int expiringWithinDays = 30;

bool hasKind(const OrgDetailTab& tab, ServiceType type) {
    return std::ranges::find(tab.serviceTypes(), type) != tab.serviceTypes().end();
}

std::string countedNoun(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace

OrganizationDetailScreen::OrganizationDetailScreen(AppContext& context, Organization& organization)
    : m_store(context.store)
    , m_state(context.state)
    , m_calendar(context.calendar)
    , m_serviceActions(context.serviceActions)
    , m_actions(context.store, context.state)
    , m_organization(organization) {}

std::vector<ServiceRecord*> OrganizationDetailScreen::servicesByTitle() const {
    // The store keeps every service in title order; walking that list keeps this organization's
    // rows in the same order as every other list, and costs one pass.
    std::vector<ServiceRecord*> services = m_store.fetchAllServices(false);
    std::erase_if(services,
                  [this](const ServiceRecord* s) { return s->organization != &m_organization; });
    return services;
}

OrganizationDetailScreen::Header OrganizationDetailScreen::header() const {
    const Organization& o = m_organization;
    Header header{
        .name = o.name,
        .projectName = o.projectName,
        .contact = {},
        .tags = o.tags,
        .isFavorite = o.isFavorite,
        .favoriteTitle = o.isFavorite ? "Remove from Favorites" : "Add to Favorites",
        .archiveTitle = o.isArchived ? "Restore" : "Archive",
        .archiveIcon = o.isArchived ? "arrow.uturn.backward" : "archivebox",
    };
    if (!o.contactName.empty()) {
        header.contact.push_back({"person", o.contactName, ""});
    }
    if (!o.contactEmail.empty()) {
        header.contact.push_back({"envelope", o.contactEmail, "mailto:" + o.contactEmail});
    }
    if (!o.contactPhone.empty()) {
        header.contact.push_back({"phone", o.contactPhone, ""});
    }
    if (!o.website.empty()) {
        const bool hasScheme = o.website.find("://") != std::string::npos;
        header.contact.push_back(
            {"globe", o.website, hasScheme ? o.website : "https://" + o.website});
    }
    return header;
}

std::vector<OrganizationDetailScreen::Tab> OrganizationDetailScreen::tabs() const {
    std::array<std::size_t, OrgDetailTab::caseCount> counts{};
    for (const ServiceRecord* service : m_organization.services) {
        if (service->isArchived) {
            continue;
        }
        for (const OrgDetailTab& tab : OrgDetailTab::allCases()) {
            if (hasKind(tab, service->serviceType())) {
                ++counts[tab.index()];
                break;
            }
        }
    }
    std::vector<Tab> tabs;
    for (const OrgDetailTab& tab : OrgDetailTab::allCases()) {
        std::string title(tab.label());
        if (!tab.serviceTypes().empty()) {
            title += " (" + std::to_string(counts[tab.index()]) + ")";
        }
        tabs.push_back({tab, std::move(title), std::string(tab.icon())});
    }
    return tabs;
}

OrgDetailTab OrganizationDetailScreen::selectedTab() const {
    return m_state.selectedOrgTab();
}

void OrganizationDetailScreen::selectTab(OrgDetailTab tab) {
    m_state.setSelectedOrgTab(tab);
}

OrganizationDetailScreen::Overview OrganizationDetailScreen::overview() const {
    const Organization& o = m_organization;
    const std::size_t active = o.activeServices().size();
    const std::size_t expiring = o.expiringServices(m_calendar).size();
    const std::size_t expired = o.expiredServices(m_calendar).size();
    const std::optional<Instant> next = o.nextExpiration(m_calendar);
    Overview overview;
    overview.stats = {
        {"Active Services", std::to_string(active), "checkmark.circle", Palette::Color::green},
        {"Expiring", std::to_string(expiring), "exclamationmark.triangle",
         expiring > 0 ? Palette::Color::orange : Palette::Color::secondary},
        {"Expired", std::to_string(expired), "xmark.circle",
         expired > 0 ? Palette::Color::red : Palette::Color::secondary},
        {"Monthly Cost", currencyFormatted(o.monthlyCost()), "dollarsign.circle",
         Palette::Color::blue},
        {"Yearly Cost", currencyFormatted(o.yearlyCost()), "calendar", Palette::Color::purple},
        {"Next Expiration",
         next ? DateText::format(*next, DateText::Style::abbreviated, m_calendar) : "None",
         "calendar.badge.clock", Palette::Color::teal},
    };

    overview.expiringSoon.title = "Expiring Within 30 Days";
    for (ServiceRecord* service : m_store.fetchExpiringSoon(expiringWithinDays)) {
        if (service->organization == &m_organization) {
            overview.expiringSoon.services.push_back(service);
        }
    }

    overview.recentlyUpdated.title = "Recently Updated";
    std::vector<ServiceRecord*> recent;
    for (ServiceRecord* service : o.services) {
        if (!service->isArchived) {
            recent.push_back(service);
        }
    }
    const std::size_t shown = std::min(recent.size(), recentlyUpdatedCount);
    std::ranges::partial_sort(recent, recent.begin() + static_cast<std::ptrdiff_t>(shown),
                              std::greater<>(),
                              [](const ServiceRecord* s) { return s->updatedAt; });
    recent.resize(shown);
    overview.recentlyUpdated.services = std::move(recent);
    return overview;
}

OrganizationDetailScreen::ServiceTab OrganizationDetailScreen::serviceTab(OrgDetailTab tab) const {
    const auto kinds = tab.serviceTypes();
    std::vector<Section> byKind(kinds.size());
    for (ServiceRecord* service : servicesByTitle()) {
        const auto kind = std::ranges::find(kinds, service->serviceType());
        if (kind != kinds.end()) {
            byKind[static_cast<std::size_t>(kind - kinds.begin())].services.push_back(service);
        }
    }
    ServiceTab content;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (!byKind[i].services.empty()) {
            byKind[i].title = std::string(kinds[i].label());
            byKind[i].trailingText = std::to_string(byKind[i].services.size());
            content.sections.push_back(std::move(byKind[i]));
        }
    }
    if (content.sections.empty()) {
        content.emptyState = EmptyState{tab.icon(), "No " + std::string(tab.label()) + " Yet",
                                        "Services of this kind that you add to " +
                                            m_organization.name + " appear here.",
                                        "Add Service"};
    }
    return content;
}

OrganizationDetailScreen::Expenses OrganizationDetailScreen::expenses() const {
    Expenses content;
    content.totals = {
        {"Monthly Total", currencyFormatted(m_organization.monthlyCost()), "dollarsign.circle",
         Palette::Color::blue},
        {"Yearly Total", currencyFormatted(m_organization.yearlyCost()), "calendar",
         Palette::Color::purple},
    };
    for (const auto& [title, preset] :
         {std::pair{"Paid This Year", ReportPeriod::Preset::thisYear},
          std::pair{"Paid Last Year", ReportPeriod::Preset::lastYear}}) {
        if (const std::optional<ReportPeriod> period = ReportPeriod::preset(preset, m_calendar)) {
            const CostReport report(m_store, m_organization, *period, m_calendar);
            content.paid.push_back(
                {title, currencyFormatted(report.totals().paidInPeriod, {}, CurrencyDigits::all),
                 "checkmark.circle", Palette::Color::green});
        }
    }
    std::vector<std::pair<Decimal, ServiceRecord*>> paid;
    for (ServiceRecord* service : servicesByTitle()) {
        // A service counts as paid when either amount was entered, whatever its cycle.
        if (service->monthlyCost > Decimal() || service->yearlyCost > Decimal()) {
            paid.emplace_back(service->effectiveMonthlyCost(), service);
        }
    }
    std::ranges::stable_sort(paid, std::greater<>(),
                             [](const auto& entry) -> const Decimal& { return entry.first; });
    for (const auto& [monthly, service] : paid) {
        content.rows.push_back({service, service->title, std::string(service->serviceType().icon()),
                                service->serviceType().tintColor(),
                                std::string(service->billingCycle().label()),
                                currencyFormatted(monthly)});
    }
    if (content.rows.empty()) {
        content.emptyState = EmptyState{"dollarsign.circle", "No Expenses",
                                        "None of this organization's services has a cost.", ""};
    }
    return content;
}

OrganizationDetailScreen::Renewals OrganizationDetailScreen::renewals() const {
    std::vector<ServiceRecord*> dated;
    for (ServiceRecord* service : servicesByTitle()) {
        if (service->expirationDate) {
            dated.push_back(service);
        }
    }
    std::ranges::stable_sort(dated, {}, [](const ServiceRecord* s) { return *s->expirationDate; });
    Renewals content{RenewalScreen::bandsOf(dated, m_calendar), std::nullopt};
    if (content.bands.empty()) {
        content.emptyState =
            EmptyState{"calendar.badge.clock", "No Renewals",
                       "None of this organization's services has an expiration date.", ""};
    }
    return content;
}

const std::string& OrganizationDetailScreen::notes() const {
    return m_organization.notes;
}

OrganizationDetailScreen::Sharing OrganizationDetailScreen::sharing() const {
    Sharing content;
    const Instant now = m_calendar.now();
    for (ShareRecord* share : m_store.fetchShares(m_organization)) {
        ShareRow row{
            .share = share,
            .date =
                DateText::format(share->sharedAt, DateText::Style::abbreviatedWithTime, m_calendar),
            .recipient = share->recipientLabel.empty() ? "Not specified" : share->recipientLabel,
            .method = share->shareMethod() ? std::string(share->shareMethod()->displayName())
                                           : share->shareMethodRaw,
            .servicesText = countedNoun(share->serviceIDs.size(), "service"),
            .secretsText = share->includesSecrets ? "Secrets included" : "No secrets",
            .withheldText = "Nothing withheld",
            .expiryText = "No expiry",
            .isRevoked = share->isRevoked,
            .accessibleText = {},
        };
        if (!share->redactedFields.empty()) {
            row.withheldText = "Withheld: ";
            for (std::size_t i = 0; i < share->redactedFields.size(); ++i) {
                row.withheldText += (i == 0 ? "" : ", ") + share->redactedFields[i];
            }
        }
        if (share->expirationDate) {
            row.expiryText =
                (*share->expirationDate < now ? "Expired " : "Expires ") +
                DateText::format(*share->expirationDate, DateText::Style::abbreviated, m_calendar);
        }
        row.accessibleText = "Shared " + row.date + " with " + row.recipient + ", " + row.method +
                             ", " + row.servicesText + ", " + row.secretsText + ", " +
                             row.withheldText + ", " + row.expiryText +
                             (row.isRevoked ? ", revoked." : ".");
        content.rows.push_back(std::move(row));
    }
    if (content.rows.empty()) {
        content.emptyState = EmptyState{
            "paperplane", "No Shares Yet",
            "Each time you share this organization's services, the share is recorded here.", ""};
    }
    return content;
}

void OrganizationDetailScreen::back() {
    m_state.setSelectedOrganization(nullptr);
}

void OrganizationDetailScreen::toggleFavorite() {
    m_actions.toggleFavorite(m_organization);
}

void OrganizationDetailScreen::edit() {
    m_actions.edit(m_organization);
}

void OrganizationDetailScreen::share() {
    m_actions.share(m_organization);
}

void OrganizationDetailScreen::archiveOrRestore() {
    if (m_organization.isArchived) {
        m_actions.restore(m_organization);
    } else {
        m_actions.archive(m_organization);
    }
}

void OrganizationDetailScreen::addService() {
    m_state.setNewServiceOrganization(&m_organization);
    m_state.setShowingNewService(true);
}

void OrganizationDetailScreen::smartPaste() {
    // The smart paste sheet saves into the selected organization, which this screen is showing.
    m_state.setSelectedOrganization(&m_organization);
    m_state.setShowingSmartPaste(true);
}

void OrganizationDetailScreen::markRenewed(ServiceRecord& service) {
    m_serviceActions.markRenewed(service);
}

void OrganizationDetailScreen::setNotes(const std::string& notes) {
    if (notes == m_organization.notes) {
        return;
    }
    m_organization.notes = notes;
    m_organization.updatedAt = m_calendar.now();
    m_store.noteChanged(m_organization);
}

void OrganizationDetailScreen::markRevoked(ShareRecord& share) {
    share.isRevoked = true;
    m_store.noteChanged(share);
    m_store.save();
}

} // namespace vorlane
