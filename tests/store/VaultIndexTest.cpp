// SPDX-License-Identifier: GPL-3.0-or-later
// The store's flat indexes under long runs of edits, checked against answers worked out from the
// records themselves; the id table on its own; and tag lists in every form the file may hold.

#include "VaultFixture.h"
#include "store/LocalizedOrder.h"
#include "store/SlotsById.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;
using Services = std::vector<ServiceRecord*>;

class VaultIndexTest : public VaultFixture {
protected:
    VaultIndexTest() { open(); }
    DataStore& store() { return *m_store; }

    // What the lists must say about `services` (every live service, in insertion order):
    // localized title order with ties in insertion order, and the expiration windows.
    Services byTitle(const Services& services, bool includeArchived) const {
        const LocalizedOrder order;
        std::vector<std::pair<std::string, ServiceRecord*>> keyed;
        for (ServiceRecord* service : services) {
            if (includeArchived || !service->isArchived) {
                keyed.emplace_back(order.sortKey(service->title), service);
            }
        }
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        Services result;
        for (const auto& entry : keyed) {
            result.push_back(entry.second);
        }
        return result;
    }

    static Services byExpiration(const Services& services, Instant after, Instant upTo) {
        Services result;
        for (ServiceRecord* service : services) {
            if (!service->isArchived && service->expirationDate &&
                *service->expirationDate > after && *service->expirationDate <= upTo) {
                result.push_back(service);
            }
        }
        std::stable_sort(result.begin(), result.end(), [](const auto* a, const auto* b) {
            return *a->expirationDate < *b->expirationDate;
        });
        return result;
    }

    static std::vector<Uuid> ids(const Services& services) {
        std::vector<Uuid> result;
        for (const ServiceRecord* service : services) {
            result.push_back(service->id);
        }
        return result;
    }
};

// Titles share words and numbers so that ties, case and numeric order all come up; only the title
// is searchable text here, so a search must find exactly the titles holding the query.
TEST_F(VaultIndexTest, ListsSearchAndWindowsFollowARandomRunOfEdits) {
    const std::vector<std::string> words{"Alpha", "alpha", "Beta", "Émile", "server", "Server"};
    std::mt19937 random(7);
    const auto pick = [&](std::size_t count) {
        return random() % count;
    };
    const auto randomTitle = [&] {
        return words[pick(words.size())] + " " + std::to_string(pick(12));
    };
    m_clock.set(utc(2025, 6, 1, 12)); // 30 days without a daylight-saving change
    const Instant now = m_clock.now();
    Organization& first = addOrganization("one");
    Organization& second = addOrganization("two");
    Services live;

    const auto check = [&](int step) {
        // Every other time the search comes first, while the title order is out of date.
        if (step % 2 == 0) {
            ASSERT_EQ(store().fetchAllServices(true), byTitle(live, true)) << "step " << step;
        }
        Services found;
        for (ServiceRecord* service : byTitle(live, false)) {
            std::string title = service->title;
            std::transform(title.begin(), title.end(), title.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            if (title.find("alpha") != std::string::npos) {
                found.push_back(service);
            }
        }
        ASSERT_EQ(store().search("ALPHA"), found) << "step " << step;
        ASSERT_EQ(store().fetchAllServices(true), byTitle(live, true)) << "step " << step;
        ASSERT_EQ(store().fetchAllServices(), byTitle(live, false)) << "step " << step;
        ASSERT_EQ(store().fetchExpired(), byExpiration(live, Instant::min(), now - 1ms))
            << "step " << step;
        ASSERT_EQ(store().fetchExpiringSoon(30), byExpiration(live, now, now + 24h * 30))
            << "step " << step;
        ASSERT_EQ(store().fetchExpiringBetween(now - 24h * 10, now + 24h * 20),
                  byExpiration(live, now - 24h * 10 - 1ms, now + 24h * 20 - 1ms))
            << "step " << step;
        ASSERT_EQ(store().countServices(true), live.size()) << "step " << step;
        ASSERT_EQ(store().countServices(), byTitle(live, false).size()) << "step " << step;
        // The dashboard's newest few: a stable sort of the title order by time of change.
        Services recent = byTitle(live, false);
        std::stable_sort(recent.begin(), recent.end(),
                         [](const auto* a, const auto* b) { return a->updatedAt > b->updatedAt; });
        recent.resize(std::min<std::size_t>(recent.size(), 5));
        ASSERT_EQ(store().fetchRecentlyUpdated(5), recent) << "step " << step;
        std::size_t active = 0;
        for (const ServiceRecord* service : live) {
            active += !service->isArchived && service->status() == ServiceStatus::active;
        }
        ASSERT_EQ(store().totalActiveServices(), active) << "step " << step;
    };

    for (int step = 0; step < 1500; ++step) {
        const std::size_t action = live.empty() ? 0 : pick(10);
        if (action <= 3) {
            ServiceRecord& service = addService(pick(2) ? first : second, randomTitle());
            if (pick(3) != 0) {
                // Several services share each day, so that ties in the windows come up.
                change(service, [&](ServiceRecord& s) {
                    s.expirationDate = now + 24h * (static_cast<int>(pick(90)) - 30);
                });
            }
            live.push_back(&service);
        } else if (action <= 5) {
            // Few distinct times of change, so that the newest few are often tied.
            change(*live[pick(live.size())], [&](ServiceRecord& s) {
                s.title = randomTitle();
                s.updatedAt = now + 1min * static_cast<int>(pick(4));
            });
        } else if (action == 6) {
            change(*live[pick(live.size())], [&](ServiceRecord& s) {
                s.isArchived = !s.isArchived;
                s.expirationDate.reset();
            });
        } else if (action == 7) {
            change(*live[pick(live.size())], [&](ServiceRecord& s) {
                s.setStatus(s.status() == ServiceStatus::active ? ServiceStatus::warning
                                                                : ServiceStatus::active);
                s.expirationDate = now + 24h * (static_cast<int>(pick(90)) - 30);
            });
        } else {
            // Removal frees a slot that a later insertion takes again.
            const std::size_t at = pick(live.size());
            ServiceRecord* removed = live[at];
            const Uuid id = removed->id;
            live.erase(live.begin() + static_cast<std::ptrdiff_t>(at));
            store().deleteService(*removed);
            ASSERT_EQ(store().service(id), nullptr);
        }
        // Reading the lists sorts what was added since; reading them only now and then leaves
        // long unsorted runs for the edits in between to find their way through.
        if (step % 37 == 0 || step % 37 == 1 || step > 1400) {
            check(step);
        }
    }
    for (ServiceRecord* service : live) {
        ASSERT_EQ(store().service(service->id), service);
    }

    // The file gives back the same order: ties stay in insertion order across a reopening.
    const std::vector<Uuid> before = ids(store().fetchAllServices(true));
    const std::vector<Uuid> expiringBefore = ids(store().fetchExpiringSoon(30));
    const std::vector<Uuid> foundBefore = ids(store().search("alpha"));
    ASSERT_FALSE(foundBefore.empty());
    reopen();
    // Searched first: a single search orders its matches without the whole title order.
    EXPECT_EQ(ids(store().search("alpha")), foundBefore);
    EXPECT_EQ(ids(store().fetchAllServices(true)), before);
    EXPECT_EQ(ids(store().fetchExpiringSoon(30)), expiringBefore);
}

// Every edit leaves the old search text and title key behind in the store's one string buffer,
// until there is enough garbage to compact it; what is read after compactions must be what the
// records say.
TEST_F(VaultIndexTest, SearchAndOrderSurviveCompactingTheStringBuffer) {
    Organization& owner = addOrganization("Owner");
    Services live;
    for (int i = 0; i < 2000; ++i) {
        live.push_back(&addService(owner, "svc " + std::to_string(i)));
    }
    ASSERT_EQ(store().fetchAllServices(), byTitle(live, false)); // every title has its key
    const std::string filler(400, 'x');
    for (std::size_t round = 0; round < 4; ++round) {
        Services withNeedle;
        for (std::size_t i = 0; i < live.size(); ++i) {
            const bool needle = i % 3 == round % 3;
            change(*live[i], [&](ServiceRecord& s) {
                s.notes = filler + (needle ? " needle" : "");
                // A permutation of the titles: every key changes, none repeats.
                s.title = "svc " + std::to_string((i * 7 + round + 1) % 2000);
            });
        }
        // Removals free slots (and their strings) between compactions.
        store().deleteService(*live.back());
        live.pop_back();
        for (std::size_t i = 0; i < live.size(); ++i) {
            if (i % 3 == round % 3) {
                withNeedle.push_back(live[i]);
            }
        }
        ASSERT_EQ(store().search("NEEDLE"), byTitle(withNeedle, false)) << "round " << round;
        ASSERT_EQ(store().fetchAllServices(), byTitle(live, false)) << "round " << round;
    }
}

// Deleting many ids in a row, each leaving a hole in a probe run, must never hide another id;
// the second half of the bytes alone must be enough to tell ids apart.
TEST(SlotsByIdTest, FindsEveryIdThroughGrowthAndDeletions) {
    std::mt19937_64 random(11);
    std::vector<Uuid> idsBySlot;
    const auto idOf = [&](std::uint32_t slot) -> const Uuid& {
        return idsBySlot[slot];
    };
    std::unordered_map<Uuid, std::uint32_t> expected;
    SlotsById table;
    for (std::uint32_t slot = 0; slot < 20000; ++slot) {
        Uuid::Bytes bytes{};
        const std::uint64_t value = slot % 2 ? random() : slot; // half differ in a few bits only
        for (int i = 0; i < 8; ++i) {
            bytes[8 + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
        idsBySlot.emplace_back(bytes);
        table.insert(idsBySlot.back(), slot, idOf);
        expected[idsBySlot.back()] = slot;
    }
    for (std::uint32_t slot = 0; slot < 20000; slot += 1 + random() % 3) {
        table.erase(idsBySlot[slot], idOf);
        expected.erase(idsBySlot[slot]);
    }
    // Erasing what is not there changes nothing.
    table.erase(Uuid::generate(), idOf);
    ASSERT_EQ(table.size(), expected.size());
    for (std::uint32_t slot = 0; slot < 20000; ++slot) {
        const auto found = table.find(idsBySlot[slot], idOf);
        if (expected.contains(idsBySlot[slot])) {
            ASSERT_EQ(found, slot);
        } else {
            ASSERT_FALSE(found) << slot;
        }
    }
    // An id added again points at its new slot.
    idsBySlot.push_back(idsBySlot[1]);
    table.insert(idsBySlot.back(), 20000, idOf);
    EXPECT_EQ(table.find(idsBySlot[1], idOf), 20000u);
    EXPECT_EQ(table.size(), expected.size());
}

// Tag lists are written compactly, but a vault may hold any JSON array of strings; each must read
// back as what it says, and anything else is a damaged row.
TEST_F(VaultIndexTest, TagListsInEveryFormReadBack) {
    Organization& owner = addOrganization("Owner");
    const Uuid id = addService(owner, "Tagged").id;
    ASSERT_TRUE(store().save());
    m_store.reset();
    const std::vector<std::pair<std::string, std::vector<std::string>>> readable{
        {R"([])", {}},
        {R"([""])", {""}},
        {R"(["a","b c"])", {"a", "b c"}},
        {R"([ "a" , "b" ])", {"a", "b"}},
        {R"(["caf\u00e9","tab\there"])", {"café", "tab\there"}},
        {R"(["ünï","q\"uote","back\\slash"])", {"ünï", "q\"uote", "back\\slash"}},
        {R"(["a]","[b"])", {"a]", "[b"}},
    };
    for (const auto& [json, tags] : readable) {
        raw().execute("UPDATE services SET tags = '" + json + "'");
        const ServiceRecord* service = open().service(id);
        ASSERT_NE(service, nullptr) << json;
        EXPECT_EQ(service->tags, tags) << json;
        m_store.reset();
    }
    for (const std::string json :
         {R"(["x",])", R"(["x")", R"([1])", R"(["x""y"])", R"("x")", R"([,"x"])", "[\"\xff\"]"}) {
        raw().execute("UPDATE services SET tags = '" + json + "'");
        const auto opened = DataStore::open(m_path, m_keychain, m_calendar, m_timers);
        ASSERT_FALSE(opened) << json;
        EXPECT_NE(opened.error().find("is damaged"), std::string::npos) << opened.error();
    }
}

} // namespace
} // namespace vorlane::testing
