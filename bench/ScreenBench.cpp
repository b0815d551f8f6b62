// The expense and dashboard screen models rebuilt after a change, over vaults of 10,000 and
// 100,000 services (the generator behind `vorlane-cli demo`): what the widget pays each time the
// store says it changed. Vaults are generated once into the temp folder and reused.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "TestTime.h"
#include "app/AppState.h"
#include "app/Clipboard.h"
#include "screens/DashboardScreen.h"
#include "screens/ExpenseScreen.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/DemoVault.h"
#include "util/UserCalendar.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace vorlane;

const Instant benchNow = testing::utc(2025, 6, 1, 12);

// The screens never copy anything here; the navigation state only needs somewhere to write.
class NoClipboard final : public Clipboard {
public:
    void clear() override {}
    void setText(const std::string&) override {}
    std::optional<std::string> text() const override { return std::nullopt; }
};

struct Environment {
    testing::ManualClock clock{benchNow};
    testing::ManualTimers timers{clock};
    UserCalendar calendar{clock, "Europe/Berlin"};
    LibsecretBackend backend; // never called: the bench vaults hold no secrets
    KeychainManager keychain{backend};
    NoClipboard clipboard;
    AppState state{clipboard, timers};
};

Environment& environment() {
    static Environment instance;
    return instance;
}

DataStore& sharedStore(std::int64_t services) {
    // The environment first, so that it outlives the stores: closing a store saves what the
    // benchmarks left pending, through the environment's calendar and timers.
    Environment& shared = environment();
    static std::map<std::int64_t, std::unique_ptr<DataStore>> stores;
    auto& store = stores[services];
    if (!store) {
        const std::string path = (std::filesystem::temp_directory_path() /
                                  ("vorlane-screen-bench-" + std::to_string(services) + ".sqlite"))
                                     .string();
        const bool fresh = !std::filesystem::exists(path);
        auto opened = DataStore::open(path, shared.keychain, shared.calendar, shared.timers);
        if (!opened) {
            throw std::runtime_error("cannot open " + path + ": " + opened.error());
        }
        store = std::move(opened).value();
        if (fresh) {
            DemoVault::Options options;
            options.services = static_cast<int>(services);
            DemoVault::populate(*store, benchNow, options);
        }
    }
    return *store;
}

// One edit, as a form makes it: a service's monthly cost changes and the store says so, which
// also drops that organization's cached totals.
void editOneService(DataStore& store, ServiceRecord& service, long round) {
    service.monthlyCost = Decimal(round % 50 + 1);
    store.noteChanged(service);
}

void expenseScreenAfterChange(benchmark::State& state, ExpenseScreen::GroupBy groupBy) {
    DataStore& store = sharedStore(state.range(0));
    ExpenseScreen screen(store, groupBy);
    ServiceRecord& edited = *store.fetchAllServices().at(store.fetchAllServices().size() / 2);
    const Decimal original = edited.monthlyCost;
    long round = 0;
    for (auto _ : state) {
        editOneService(store, edited, ++round);
        screen.reload();
        benchmark::DoNotOptimize(screen.cards().size());
    }
    edited.monthlyCost = original;
    store.noteChanged(edited);
    state.counters["cards"] = static_cast<double>(screen.cards().size());
    state.counters["paid"] = static_cast<double>(screen.paidServiceCount());
}
BENCHMARK_CAPTURE(expenseScreenAfterChange, byOrganization, ExpenseScreen::GroupBy::organization)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expenseScreenAfterChange, byProvider, ExpenseScreen::GroupBy::provider)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expenseScreenAfterChange, byType, ExpenseScreen::GroupBy::type)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

void dashboardScreenAfterChange(benchmark::State& state) {
    DataStore& store = sharedStore(state.range(0));
    DashboardScreen screen(store, environment().state, environment().calendar);
    ServiceRecord& edited = *store.fetchAllServices().at(store.fetchAllServices().size() / 2);
    const Decimal original = edited.monthlyCost;
    long round = 0;
    for (auto _ : state) {
        editOneService(store, edited, ++round);
        screen.reload();
        benchmark::DoNotOptimize(screen.alerts().size());
    }
    edited.monthlyCost = original;
    store.noteChanged(edited);
    state.counters["alerts"] = static_cast<double>(screen.alerts().size());
    state.counters["expiring"] = static_cast<double>(screen.expiringThisMonth().size());
}
BENCHMARK(dashboardScreenAfterChange)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
