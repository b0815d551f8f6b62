// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationDetailScreen.h"

#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "model/ShareRecord.h"

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Detail = OrganizationDetailScreen;

class OrganizationDetailScreenTest : public ScreenFixture {
protected:
    OrganizationDetailScreenTest()
        : m_acme(addOrganization("Acme")) {}

    ServiceRecord& addOfKind(const std::string& title, ServiceType type,
                             const std::function<void(ServiceRecord&)>& edit = {}) {
        return addService(m_acme, title, [&](ServiceRecord& s) {
            s.setServiceType(type);
            if (edit) {
                edit(s);
            }
        });
    }

    Organization& m_acme;
};

TEST_F(OrganizationDetailScreenTest, AServiceTabListsExactlyItsKindsInTheirOrder) {
    addOfKind("Secret B", ServiceType::customSecret);
    addOfKind("Key", ServiceType::apiKey);
    addOfKind("Secret A", ServiceType::customSecret);
    addOfKind("Cloud", ServiceType::cloudAccount);
    addOfKind("FTP", ServiceType::ftpAccess);
    addOfKind("Shell", ServiceType::sshAccess);
    addOfKind("Old shell", ServiceType::sshAccess, [](ServiceRecord& s) { s.isArchived = true; });
    addOfKind("Box", ServiceType::vps);
    addService(addOrganization("Other"), "Foreign shell",
               [](ServiceRecord& s) { s.setServiceType(ServiceType::sshAccess); });

    Detail screen(context(), m_acme);
    const Detail::ServiceTab credentials = screen.serviceTab(OrgDetailTab::credentials);
    std::vector<std::pair<std::string, std::vector<std::string>>> sections;
    for (const auto& section : credentials.sections) {
        sections.emplace_back(section.title, titlesOf(section.services));
    }
    const std::vector<std::pair<std::string, std::vector<std::string>>> expected{
        {"SSH Access", {"Shell"}},
        {"FTP / SFTP", {"FTP"}},
        {"Cloud Account", {"Cloud"}},
        {"API Key", {"Key"}},
        {"Custom Secret", {"Secret A", "Secret B"}},
    };
    EXPECT_EQ(sections, expected);
    EXPECT_FALSE(credentials.emptyState);

    const auto tabs = screen.tabs();
    ASSERT_EQ(tabs.size(), 12U);
    EXPECT_EQ(tabs[0].title, "Overview");
    EXPECT_EQ(tabs[1].title, "Servers (1)");
    EXPECT_EQ(tabs[2].title, "Hosting (0)");
    EXPECT_EQ(tabs[7].title, "Credentials (6)") << "the archived one is not counted";

    const Detail::ServiceTab hosting = screen.serviceTab(OrgDetailTab::hosting);
    EXPECT_TRUE(hosting.sections.empty());
    ASSERT_TRUE(hosting.emptyState);
    EXPECT_EQ(hosting.emptyState->title, "No Hosting Yet");

    screen.selectTab(OrgDetailTab::credentials);
    EXPECT_EQ(m_state.selectedOrgTab(), OrgDetailTab::credentials);
    EXPECT_EQ(screen.selectedTab(), OrgDetailTab::credentials);
}

TEST_F(OrganizationDetailScreenTest, OverviewCountsCostsAndListsWhatNeedsAttention) {
    addOfKind("Soon", ServiceType::vps, [this](ServiceRecord& s) {
        s.expirationDate = m_clock.now() + 24h * 3;
        s.monthlyCost = Decimal(10);
    });
    addOfKind("Month end", ServiceType::vps,
              [this](ServiceRecord& s) { s.expirationDate = m_clock.now() + 24h * 29; });
    addOfKind("Far", ServiceType::vps,
              [this](ServiceRecord& s) { s.expirationDate = m_clock.now() + 24h * 90; });
    addOfKind("Lapsed", ServiceType::vps,
              [this](ServiceRecord& s) { s.expirationDate = m_clock.now() - 24h; });
    addOfKind("Shelved", ServiceType::vps, [this](ServiceRecord& s) {
        s.isArchived = true;
        s.expirationDate = m_clock.now() + 24h * 2;
        s.yearlyCost = Decimal(1200);
    });
    addOfKind("Yearly", ServiceType::mailbox, [](ServiceRecord& s) {
        s.yearlyCost = Decimal(120);
        s.setBillingCycle(BillingCycle::annual);
    });
    // Touched in this order, so the last five updated are known.
    int minute = 0;
    for (ServiceRecord* service : m_acme.services) {
        service->updatedAt = m_clock.now() + std::chrono::minutes(++minute);
    }

    const Detail::Overview overview = Detail(context(), m_acme).overview();
    std::vector<std::pair<std::string, std::string>> stats;
    for (const auto& stat : overview.stats) {
        stats.emplace_back(stat.title, stat.value);
    }
    const std::vector<std::pair<std::string, std::string>> expected{
        {"Active Services", "5"}, {"Expiring", "2"},       {"Expired", "1"},
        {"Monthly Cost", "$20"},  {"Yearly Cost", "$240"}, {"Next Expiration", "Mar 12, 2026"},
    };
    EXPECT_EQ(stats, expected);
    EXPECT_EQ(titlesOf(overview.expiringSoon.services),
              (std::vector<std::string>{"Soon", "Month end"}));
    EXPECT_EQ(titlesOf(overview.recentlyUpdated.services),
              (std::vector<std::string>{"Yearly", "Lapsed", "Far", "Month end", "Soon"}));
}

TEST_F(OrganizationDetailScreenTest, ExpensesAndRenewalsCoverThePaidAndTheDatedServices) {
    addOfKind("Biennial", ServiceType::domainRegistrar, [this](ServiceRecord& s) {
        s.yearlyCost = Decimal(240);
        s.setBillingCycle(BillingCycle::biennial);
        s.expirationDate = m_clock.now() + 24h * 40;
    });
    ServiceRecord& monthly = addOfKind("Monthly", ServiceType::vps, [this](ServiceRecord& s) {
        s.monthlyCost = Decimal(15);
        s.setBillingCycle(BillingCycle::monthly);
        s.expirationDate = m_clock.now() + 24h * 5;
    });
    addOfKind("One-time", ServiceType::cpanel, [this](ServiceRecord& s) {
        s.yearlyCost = Decimal(50);
        s.setBillingCycle(BillingCycle::oneTime);
        s.expirationDate = m_clock.now() - 24h * 3;
    });
    addOfKind("Free", ServiceType::mailbox);
    addOfKind("Archived", ServiceType::vps, [](ServiceRecord& s) {
        s.isArchived = true;
        s.monthlyCost = Decimal(99);
    });

    Detail screen(context(), m_acme);
    const Detail::Expenses expenses = screen.expenses();
    ASSERT_EQ(expenses.rows.size(), 3U);
    EXPECT_EQ(expenses.rows[0].title, "Monthly");
    EXPECT_EQ(expenses.rows[0].monthlyCost, "$15");
    EXPECT_EQ(expenses.rows[1].title, "Biennial");
    EXPECT_EQ(expenses.rows[1].cycle, "Biennial (2yr)");
    EXPECT_EQ(expenses.rows[1].monthlyCost, "$10");
    EXPECT_EQ(expenses.rows[2].title, "One-time");
    EXPECT_EQ(expenses.rows[2].monthlyCost, "$0") << "paid once: listed, but nothing a month";
    EXPECT_EQ(expenses.totals[0].value, "$25");
    EXPECT_EQ(expenses.totals[1].value, "$470");
    ASSERT_EQ(expenses.paid.size(), 2U);
    EXPECT_EQ(expenses.paid[0].accessibleText(), "Paid This Year: $0.00");
    EXPECT_EQ(expenses.paid[1].accessibleText(), "Paid Last Year: $0.00");

    const Detail::Renewals renewals = screen.renewals();
    std::vector<std::string> bands;
    for (const auto& band : renewals.bands) {
        bands.push_back(band.title + " " + std::to_string(band.rows.size()) + " " +
                        band.totalCostText + " " + band.rows.at(0).title + " " +
                        band.rows.at(0).daysText);
    }
    EXPECT_EQ(bands, (std::vector<std::string>{"Expired 1  One-time 3 days ago",
                                               "This Week 1 $15 Monthly 5 days left",
                                               "Later 1 $10 Biennial 40 days left"}));

    // Renewed through the shared action (ServiceActionsTest): a month on, it moves to "Later",
    // and the month it paid counts as paid this year.
    screen.markRenewed(monthly);
    EXPECT_EQ(screen.renewals().bands.at(1).title, "Later");
    EXPECT_EQ(screen.expenses().paid[0].value, "$15.00");
    EXPECT_EQ(screen.expenses().paid[1].value, "$0.00");
}

TEST_F(OrganizationDetailScreenTest, NotesAreSavedAsTheyAreTyped) {
    Detail screen(context(), m_acme);
    screen.setNotes("Gate code 1234");
    EXPECT_EQ(screen.notes(), "Gate code 1234");
    EXPECT_TRUE(store().hasUnsavedChanges());
    m_timers.advance(DataStore::autosaveDelay);
    EXPECT_FALSE(store().hasUnsavedChanges()) << "the autosave wrote it";

    auto reopened = DataStore::open(store().path(), m_keychain, m_calendar, m_timers);
    ASSERT_TRUE(reopened);
    EXPECT_EQ(reopened.value()->fetchOrganizations().at(0)->notes, "Gate code 1234");
}

TEST_F(OrganizationDetailScreenTest, ShareHistoryIsNewestFirstAndCanBeMarkedRevoked) {
    EXPECT_EQ(Detail(context(), m_acme).sharing().emptyState->title, "No Shares Yet");
    ShareRecord older;
    older.id = Uuid::generate();
    older.sharedAt = m_clock.now() - 24h * 20;
    older.shareMethodRaw = "redactedSummary";
    older.serviceIDs = {Uuid::generate()};
    older.redactedFields = {"password", "notes"};
    older.expirationDate = m_clock.now() - 24h;
    store().insert(older, m_acme);
    ShareRecord newer;
    newer.id = Uuid::generate();
    newer.sharedAt = m_clock.now() - 1h;
    newer.recipientLabel = "Jo at Agency";
    newer.includesSecrets = true;
    newer.shareMethodRaw = "fullEncryptedBundle";
    newer.serviceIDs = {Uuid::generate(), Uuid::generate()};
    newer.expirationDate = m_clock.now() + 24h * 7;
    ShareRecord& inserted = store().insert(newer, m_acme);

    Detail screen(context(), m_acme);
    const auto rows = screen.sharing().rows;
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].recipient, "Jo at Agency");
    EXPECT_EQ(rows[0].servicesText, "2 services");
    EXPECT_EQ(rows[0].secretsText, "Secrets included");
    EXPECT_EQ(rows[0].withheldText, "Nothing withheld");
    EXPECT_EQ(rows[0].expiryText, "Expires Mar 17, 2026");
    EXPECT_EQ(rows[1].date.substr(0, 14), "Feb 18, 2026, ") << "with the time of day";
    EXPECT_EQ(rows[1].recipient, "Not specified");
    EXPECT_EQ(rows[1].servicesText, "1 service");
    EXPECT_EQ(rows[1].secretsText, "No secrets");
    EXPECT_EQ(rows[1].withheldText, "Withheld: password, notes");
    EXPECT_EQ(rows[1].expiryText, "Expired Mar 9, 2026");

    screen.markRevoked(inserted);
    EXPECT_TRUE(screen.sharing().rows[0].isRevoked);
    EXPECT_FALSE(store().hasUnsavedChanges());
}

TEST_F(OrganizationDetailScreenTest, HeaderShowsTheContactLineAndItsActionsOpenTheRightSheets) {
    m_acme.contactName = "Jo";
    m_acme.contactEmail = "jo@acme.example";
    m_acme.website = "acme.example";
    m_acme.tags = {"web", "vip"};
    addService(m_acme, "Old", [](ServiceRecord& s) { s.isArchived = true; });
    m_state.navigateTo(m_acme);
    Detail screen(context(), m_acme);

    const Detail::Header header = screen.header();
    ASSERT_EQ(header.contact.size(), 3U) << "no phone, no phone item";
    EXPECT_EQ(header.contact[1].link, "mailto:jo@acme.example");
    EXPECT_EQ(header.contact[2].link, "https://acme.example");
    EXPECT_EQ(header.tags, (std::vector<std::string>{"web", "vip"}));
    EXPECT_EQ(header.favoriteTitle, "Add to Favorites");

    screen.addService();
    EXPECT_EQ(m_state.newServiceOrganization(), &m_acme);
    EXPECT_TRUE(m_state.showingNewService());
    screen.smartPaste();
    EXPECT_EQ(m_state.selectedOrganization(), &m_acme);
    EXPECT_TRUE(m_state.showingSmartPaste());
    screen.share();
    EXPECT_EQ(m_state.shareServices().size(), 1U);
    screen.toggleFavorite();
    EXPECT_EQ(screen.header().favoriteTitle, "Remove from Favorites");
    screen.archiveOrRestore();
    EXPECT_EQ(screen.header().archiveTitle, "Restore");
    EXPECT_TRUE(m_acme.isArchived);
    screen.archiveOrRestore();
    EXPECT_FALSE(m_acme.isArchived);
    screen.back();
    EXPECT_EQ(m_state.selectedOrganization(), nullptr);
}

} // namespace
} // namespace vorlane::testing
