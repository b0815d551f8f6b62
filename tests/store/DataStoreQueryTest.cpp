// SPDX-License-Identifier: GPL-3.0-or-later
// The store's lists, search and totals, and how they follow changes noted on records.

#include "VaultFixture.h"

#include <nlohmann/json.hpp>
#include <unicode/locid.h>

#include <algorithm>
#include <chrono>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

template <typename Record> std::vector<std::string> titles(const std::vector<Record*>& records) {
    std::vector<std::string> result;
    for (const Record* record : records) {
        if constexpr (std::is_same_v<Record, ServiceRecord>) {
            result.push_back(record->title);
        } else {
            result.push_back(record->name);
        }
    }
    return result;
}

using Names = std::vector<std::string>;
using Services = std::vector<ServiceRecord*>;

class DataStoreQueryTest : public VaultFixture {
protected:
    DataStoreQueryTest() { open(); }
    DataStore& store() { return *m_store; }
};

TEST_F(DataStoreQueryTest, ListsFollowLocalizedOrderCaseInsensitiveWithNumbersByValue) {
    Organization& owner = addOrganization("zeta");
    for (const char* title : {"Server 10", "server 2", "Émile mail", "Apache", "Server 1", "éa"}) {
        addService(owner, title);
    }
    addOrganization("Beta 10");
    addOrganization("beta 9");
    addOrganization("Alpha");
    EXPECT_EQ(titles(store().fetchAllServices()),
              (Names{"Apache", "éa", "Émile mail", "Server 1", "server 2", "Server 10"}));
    EXPECT_EQ(titles(store().fetchOrganizations()), (Names{"Alpha", "beta 9", "Beta 10", "zeta"}));

    // A rename moves the record to its new place.
    change(owner, [](Organization& o) { o.name = "Aardvark"; });
    EXPECT_EQ(store().fetchOrganizations().front(), &owner);
}

// Name and title order, and search, under the locales people really run: C.UTF-8 (minimal
// installs, containers, CI), an English one, and Swedish, whose alphabet puts "Ö" after "Z".
// Whatever the locale, case counts only between otherwise equal texts and numbers compare by
// value.
struct LocaleCase {
    const char* environment; // LC_ALL of a process started in this locale
    const char* icuLocale;   // what ICU makes of it
    Names organizations;     // in name order
    Names services;          // in title order

    friend std::ostream& operator<<(std::ostream& out, const LocaleCase& c) {
        return out << c.environment;
    }
};

const LocaleCase kLocales[] = {
    {"C.UTF-8",
     "en_US_POSIX",
     {"Acme", "delta Works", "Östra Hamnen", "Zed Labs"},
     {"Alpha box", "beta box", "Item 9", "Item 10", "Öl server", "zeta server"}},
    {"en_US.UTF-8",
     "en_US",
     {"Acme", "delta Works", "Östra Hamnen", "Zed Labs"},
     {"Alpha box", "beta box", "Item 9", "Item 10", "Öl server", "zeta server"}},
    {"sv_SE.UTF-8",
     "sv_SE",
     {"Acme", "delta Works", "Zed Labs", "Östra Hamnen"},
     {"Alpha box", "beta box", "Item 9", "Item 10", "zeta server", "Öl server"}},
};

// The store orders by the process's locale as ICU sees it, so each case sets ICU's default
// locale (no system locale has to be installed) and puts the old one back afterwards.
class LocaleOrderTest : public VaultFixture, public ::testing::WithParamInterface<LocaleCase> {
protected:
    void SetUp() override {
        m_previous = icu::Locale::getDefault();
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(icu::Locale(GetParam().icuLocale), status);
        ASSERT_TRUE(U_SUCCESS(status));
        open();
        // Inserted out of order, with capitals and small letters mixed, as a user types them.
        for (const char* name : {"Zed Labs", "delta Works", "Östra Hamnen"}) {
            addOrganization(name);
        }
        Organization& acme = addOrganization("Acme");
        for (const char* title :
             {"zeta server", "Item 10", "beta box", "Öl server", "Item 9", "Alpha box"}) {
            addService(acme, title);
        }
    }

    void TearDown() override {
        m_store.reset();
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(m_previous, status);
    }

    icu::Locale m_previous;
};

TEST_P(LocaleOrderTest, ListsAndSearchResultsFollowTheLocaleIgnoringCase) {
    const LocaleCase& expected = GetParam();
    EXPECT_EQ(titles(m_store->fetchOrganizations()), expected.organizations);
    EXPECT_EQ(titles(m_store->fetchAllServices()), expected.services);

    // Every name holds an "e", and every service is found through its organization, Acme.
    EXPECT_EQ(titles(m_store->searchOrganizations("E")), expected.organizations);
    EXPECT_EQ(titles(m_store->search("e")), expected.services);

    // Case-insensitive containment in ASCII and beyond, whatever the locale.
    EXPECT_EQ(titles(m_store->searchOrganizations("hAMNEN")), (Names{"Östra Hamnen"}));
    EXPECT_EQ(titles(m_store->searchOrganizations("öSTRA")), (Names{"Östra Hamnen"}));
    EXPECT_EQ(titles(m_store->search("ÖL SERVER")), (Names{"Öl server"}));
    EXPECT_EQ(titles(m_store->search("ITEM 1")), (Names{"Item 10"}));

    // The order survives a reopen: keys are worked out again from what the file holds.
    reopen();
    EXPECT_EQ(titles(m_store->fetchOrganizations()), expected.organizations);
    EXPECT_EQ(titles(m_store->fetchAllServices()), expected.services);
}

// The same vault searched from vorlane-cli, a separate process that finds its locale in LC_ALL
// alone, as a user's shell or a CI runner starts it.
TEST_P(LocaleOrderTest, CommandLineSearchOrdersByTheEnvironmentsLocale) {
    ASSERT_TRUE(m_store->save());
    m_store.reset();
    const LocaleCase& expected = GetParam();
    const CommandRun run = runCommand(std::string("env -u LANGUAGE LANG=") + expected.environment +
                                      " LC_ALL=" + expected.environment + " " + VORLANE_CLI +
                                      " --vault " + shellWord(m_path) + " --json search e");
    ASSERT_EQ(run.status, 0) << run.err;

    Names organizations;
    Names services;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
        const auto object = nlohmann::json::parse(line);
        if (object.contains("name")) {
            organizations.push_back(object["name"]);
        } else {
            services.push_back(object["title"]);
        }
    }
    EXPECT_EQ(organizations, expected.organizations);
    EXPECT_EQ(services, expected.services);
}

INSTANTIATE_TEST_SUITE_P(Locales, LocaleOrderTest, ::testing::ValuesIn(kLocales),
                         [](const ::testing::TestParamInfo<LocaleCase>& locale) {
                             return std::string(locale.param.icuLocale);
                         });

TEST_F(DataStoreQueryTest, ArchivedAndFavoriteFilters) {
    Organization& plain = addOrganization("Plain");
    change(addOrganization("Favorite"), [](Organization& o) { o.isFavorite = true; });
    change(addOrganization("Archived favorite"), [](Organization& o) {
        o.isFavorite = true;
        o.isArchived = true;
    });

    EXPECT_EQ(titles(store().fetchOrganizations()), (Names{"Favorite", "Plain"}));
    EXPECT_EQ(titles(store().fetchOrganizations(true)),
              (Names{"Archived favorite", "Favorite", "Plain"}));
    EXPECT_EQ(titles(store().fetchFavorites()), (Names{"Favorite"}));
    EXPECT_EQ(titles(store().fetchArchivedOrganizations()), (Names{"Archived favorite"}));

    ServiceRecord& kept = addService(plain, "Kept");
    change(addService(plain, "Archived"), [](ServiceRecord& s) { s.isArchived = true; });
    EXPECT_EQ(store().fetchAllServices(), (Services{&kept}));
    EXPECT_EQ(store().fetchAllServices(true).size(), 2u);
}

TEST_F(DataStoreQueryTest, ExpiringSoonAndExpiredWindows) {
    m_clock.set(utc(2025, 6, 1, 12)); // 30 days without a daylight-saving change
    Organization& owner = addOrganization("Owner");
    const Instant now = m_clock.now();
    const auto dated = [&](const std::string& title, Instant when, bool archived = false) {
        return &change(addService(owner, title), [&](ServiceRecord& s) {
            s.expirationDate = when;
            s.isArchived = archived;
        });
    };
    ServiceRecord* hourAgo = dated("expired an hour ago", now - 1h);
    ServiceRecord* monthAgo = dated("expired a month ago", now - 24h * 31);
    ServiceRecord* almost30 = dated("30 days minus a minute", now + 24h * 30 - 1min);
    ServiceRecord* exactly30 = dated("exactly 30 days", now + 24h * 30);
    dated("30 days and a minute", now + 24h * 30 + 1min);
    ServiceRecord* tomorrow = dated("tomorrow", now + 24h);
    dated("archived tomorrow", now + 24h, true);
    dated("archived expired", now - 1h, true);
    addService(owner, "undated");

    EXPECT_EQ(store().fetchExpiringSoon(30), (Services{tomorrow, almost30, exactly30}));
    EXPECT_EQ(store().fetchExpiringSoon(3), (Services{tomorrow}));
    EXPECT_EQ(store().fetchExpired(), (Services{monthAgo, hourAgo}));

    // Time passes: tomorrow's service expires, and the windows move with the clock.
    m_clock.advance(48h);
    EXPECT_EQ(store().fetchExpired(), (Services{monthAgo, hourAgo, tomorrow}));

    // Renewing (a new date) and archiving take a service out of the expired list.
    change(*hourAgo, [&](ServiceRecord& s) { s.expirationDate = m_clock.now() + 24h * 365; });
    change(*monthAgo, [](ServiceRecord& s) { s.isArchived = true; });
    EXPECT_EQ(store().fetchExpired(), (Services{tomorrow}));
}

TEST_F(DataStoreQueryTest, ExpiringSoonCountsCalendarDaysAcrossDaylightSaving) {
    // Berlin moves its clocks forward on 30 March 2025: 30 calendar days from 20 March noon is
    // 19 April noon local time, one hour less than 30 × 24 hours later.
    Organization& owner = addOrganization("Owner");
    const Instant now = m_clock.now();
    ServiceRecord& lastNoon =
        change(addService(owner, "lands on the last local noon"),
               [&](ServiceRecord& s) { s.expirationDate = now + 24h * 30 - 1h; });
    change(addService(owner, "a minute after"),
           [&](ServiceRecord& s) { s.expirationDate = now + 24h * 30 - 59min; });
    EXPECT_EQ(store().fetchExpiringSoon(30), (Services{&lastNoon}));
}

TEST_F(DataStoreQueryTest, SharesNewestFirst) {
    Organization& owner = addOrganization("Owner");
    for (int day : {3, 9, 1}) {
        ShareRecord share;
        share.id = Uuid::generate();
        share.recipientLabel = "day " + std::to_string(day);
        share.sharedAt = utc(2025, 3, day);
        store().insert(std::move(share), owner);
    }
    std::vector<std::string> labels;
    for (const ShareRecord* share : store().fetchShares(owner)) {
        labels.push_back(share->recipientLabel);
    }
    EXPECT_EQ(labels, (Names{"day 9", "day 3", "day 1"}));
    EXPECT_EQ(owner.shareHistory.size(), 3u);
}

TEST_F(DataStoreQueryTest, SearchMatchesEveryFieldCaseInsensitively) {
    Organization& acme =
        change(addOrganization("Acme Ltd"), [](Organization& o) { o.projectName = "Relaunch"; });
    Organization& other = addOrganization("Other");
    ServiceRecord& ofAcme = addService(acme, "Mail server");
    ServiceRecord& tagged = change(addService(other, "Web"), [](ServiceRecord& s) {
        s.tags = {"backup", "acme-prod"};
        s.provider = "Hetzner";
        s.hostname = "db1.internal";
        s.ipAddress = "10.0.0.7";
        s.username = "deploy";
        s.emailAddress = "ops@straße.example";
        s.notes = "Renew before Easter";
        s.setServiceType(ServiceType::domainRegistrar);
    });
    addService(other, "Plain");

    EXPECT_EQ(store().search("ACME"), (Services{&ofAcme, &tagged}));
    EXPECT_EQ(store().search("relaunch"), (Services{&ofAcme}));
    for (const char* query : {"hetz", "DB1.", "0.0.7", "DEPLOY", "STRASSE", "easter", "backup",
                              "domainregistrar", "registrar"}) {
        EXPECT_EQ(store().search(query), (Services{&tagged})) << query;
    }
    EXPECT_TRUE(store().search("").empty());
    EXPECT_TRUE(store().search("nowhere").empty());
    // The kind is matched by its stored value, not by the label shown for it.
    EXPECT_TRUE(store().search("domain registrar").empty());
    // No match across the boundary of two fields (the title "Web", then the provider).
    EXPECT_TRUE(store().search("webhetzner").empty());

    // Archived services are never found; the search text follows edits.
    change(tagged, [](ServiceRecord& s) { s.isArchived = true; });
    EXPECT_EQ(store().search("acme"), (Services{&ofAcme}));
    change(ofAcme, [](ServiceRecord& s) { s.provider = "Fastmail"; });
    EXPECT_EQ(store().search("fastmail"), (Services{&ofAcme}));
    change(acme, [](Organization& o) { o.name = "Zenith"; });
    EXPECT_TRUE(store().search("acme").empty());
}

TEST_F(DataStoreQueryTest, SearchStaysRightThroughManyEditsRemovalsAndInsertions) {
    // Enough rewritten text that the folded texts are compacted several times, and removals
    // whose rows are reused by later insertions. The expected results come from a plain scan.
    Organization& owner = addOrganization("Owner");
    std::vector<ServiceRecord*> services;
    for (int i = 0; i < 300; ++i) {
        services.push_back(&addService(owner, "Service " + std::to_string(i)));
    }
    for (int round = 0; round < 6; ++round) {
        for (std::size_t i = 0; i < services.size(); ++i) {
            services[i]->notes = std::string(2000, 'x') + " round" + std::to_string(round) +
                                 " mark" + std::to_string((i + round) % 7);
            store().noteChanged(*services[i]);
        }
    }
    for (std::size_t i = 0; i < services.size(); i += 3) {
        store().deleteService(*services[i]);
    }
    for (int i = 0; i < 50; ++i) {
        addService(owner, "Late " + std::to_string(i)).notes = "mark3 tardy";
    }
    // The last loop changed notes without telling the store: those are not searchable yet.
    EXPECT_TRUE(store().search("tardy").empty());
    for (ServiceRecord* service : store().fetchAllServices()) {
        if (service->title.starts_with("Late ")) {
            store().noteChanged(*service);
        }
    }
    for (const std::string query : {"mark3", "round5 mark6", "round4", "tardy", "service 29"}) {
        std::vector<ServiceRecord*> expected;
        for (ServiceRecord* service : store().fetchAllServices()) {
            if ((service->notes + "|" + service->title).find(query) != std::string::npos ||
                ("s" + service->title.substr(1)).find(query) != std::string::npos) {
                expected.push_back(service);
            }
        }
        EXPECT_EQ(store().search(query), expected) << query;
        EXPECT_FALSE(expected.empty() && query != "round4") << query;
    }
}

TEST_F(DataStoreQueryTest, SearchIsAccentSensitiveButIgnoresHowAnAccentIsEncoded) {
    Organization& owner = addOrganization("Owner");
    ServiceRecord& composed = addService(owner, "Caf\xc3\xa9 Noir"); // é as one code point
    ServiceRecord& plain = addService(owner, "Cafe Blanc");
    EXPECT_EQ(store().search("CAFE\xcc\x81"), (Services{&composed})); // e + ◌́
    EXPECT_EQ(store().search("caf\xc3\x89"), (Services{&composed}));  // É
    EXPECT_EQ(store().search("cafe "), (Services{&plain}));
}

TEST_F(DataStoreQueryTest, SearchOrganizationsMatchesItsOwnFields) {
    Organization& byContact = change(addOrganization("Northwind"), [](Organization& o) {
        o.contactName = "Greta Berg";
        o.tags = {"retainer"};
        o.notes = "Pays late";
    });
    Organization& byProject = change(addOrganization("Bluebird"),
                                     [](Organization& o) { o.projectName = "Greta's shop"; });
    change(addOrganization("Greta Archived"), [](Organization& o) { o.isArchived = true; });

    EXPECT_EQ(store().searchOrganizations("GRETA"),
              (std::vector<Organization*>{&byProject, &byContact}));
    EXPECT_EQ(store().searchOrganizations("retainer"), (std::vector<Organization*>{&byContact}));
    EXPECT_EQ(store().searchOrganizations("late"), (std::vector<Organization*>{&byContact}));
    EXPECT_TRUE(store().searchOrganizations("").empty());
    // The website and e-mail are not searched.
    change(byContact, [](Organization& o) { o.website = "https://unique.example"; });
    EXPECT_TRUE(store().searchOrganizations("unique").empty());
}

TEST_F(DataStoreQueryTest, TotalsSkipArchivedOrganizationsAndServicesAndFollowChanges) {
    Organization& live = addOrganization("Live");
    Organization& archivedOrg = addOrganization("Archived org");
    const auto costing = [&](Organization& owner, const char* title, int monthly, int yearly) {
        return &change(addService(owner, title), [&](ServiceRecord& s) {
            s.monthlyCost = Decimal(monthly);
            s.yearlyCost = Decimal(yearly);
        });
    };
    ServiceRecord* monthly = costing(live, "Monthly 15", 15, 0);
    change(*costing(live, "Biennial 240", 0, 240),
           [](ServiceRecord& s) { s.setBillingCycle(BillingCycle::biennial); });
    change(*costing(live, "Archived", 1000, 0), [](ServiceRecord& s) { s.isArchived = true; });
    ServiceRecord& inArchivedOrg = *costing(archivedOrg, "In archived org", 7, 0);
    change(archivedOrg, [](Organization& o) { o.isArchived = true; });
    change(addService(live, "Unknown status"), [](ServiceRecord& s) { s.statusRaw = "new"; });
    ServiceRecord& expired = change(addService(live, "Expired status"),
                                    [](ServiceRecord& s) { s.setStatus(ServiceStatus::expired); });

    // 15 + 240/24; 15×12 + 240.
    EXPECT_EQ(store().totalMonthlyCost(), Decimal(25));
    EXPECT_EQ(store().totalYearlyCost(), Decimal(420));
    // Active: monthly, biennial, the unknown status and the service of the archived organization.
    EXPECT_EQ(store().totalActiveServices(), 4u);

    change(expired, [](ServiceRecord& s) { s.setStatus(ServiceStatus::active); });
    EXPECT_EQ(store().totalActiveServices(), 5u);
    change(*monthly, [](ServiceRecord& s) { s.monthlyCost = *Decimal::fromString("15.5"); });
    EXPECT_EQ(store().totalMonthlyCost(), *Decimal::fromString("25.5"));
    change(archivedOrg, [](Organization& o) { o.isArchived = false; });
    EXPECT_EQ(store().totalMonthlyCost(), *Decimal::fromString("32.5"));
    EXPECT_EQ(store().totalYearlyCost(), Decimal(510));

    // Moving a service, right after the totals were worked out, keeps both organizations in
    // step: lists, totals and search by organization name.
    store().moveService(*monthly, archivedOrg);
    EXPECT_EQ(monthly->organization, &archivedOrg);
    EXPECT_EQ(archivedOrg.services.back(), monthly);
    EXPECT_EQ(live.monthlyCost(), Decimal(10));
    EXPECT_EQ(store().totalMonthlyCost(), *Decimal::fromString("32.5"));
    EXPECT_EQ(store().search("archived org"), (Services{&inArchivedOrg, monthly}));
    EXPECT_EQ(store().search("live").size(), 3u);
    change(archivedOrg, [](Organization& o) { o.isArchived = true; });
    EXPECT_EQ(store().totalMonthlyCost(), Decimal(10));

    store().deleteService(*monthly);
    EXPECT_EQ(archivedOrg.services.size(), 1u);
    EXPECT_EQ(store().totalActiveServices(), 4u);
    change(archivedOrg, [](Organization& o) { o.isArchived = false; });
    EXPECT_EQ(store().totalMonthlyCost(), Decimal(17));

    // Each service's effective monthly cost is kept between totals: a new service in the slot the
    // deleted one left, and a change of its cycle, are worked out afresh.
    ServiceRecord& yearly = change(*costing(live, "Yearly 120", 0, 120), [](ServiceRecord& s) {
        s.setBillingCycle(BillingCycle::annual);
    });
    EXPECT_EQ(store().effectiveMonthlyCost(yearly), Decimal(10));
    EXPECT_EQ(store().totalMonthlyCost(), Decimal(27));
    change(yearly, [](ServiceRecord& s) { s.setBillingCycle(BillingCycle::biennial); });
    EXPECT_EQ(store().effectiveMonthlyCost(yearly), Decimal(5));
    EXPECT_EQ(store().totalMonthlyCost(), Decimal(22));
}

TEST_F(DataStoreQueryTest, ObserversHearOfEveryChange) {
    int notified = 0;
    store().changed.connect([&] { ++notified; });
    Organization& owner = addOrganization("Owner");
    ServiceRecord& service = addService(owner, "Service");
    change(service, [](ServiceRecord& s) { s.title = "Renamed"; });
    store().deleteService(service);
    EXPECT_EQ(notified, 4);
}

} // namespace
} // namespace vorlane::testing
