// SPDX-License-Identifier: GPL-3.0-or-later
// The expense and dashboard screen models rebuilt after a change, and the chart of costs due that
// both build, over vaults of 10,000 and 100,000 services (the generator behind `vorlane-cli
// demo`): what the widget pays each time the store says it changed. Vaults are generated once
// into the temp folder and reused.

#include "BenchEnvironment.h"
#include "screens/CostsDueChart.h"
#include "screens/DashboardScreen.h"
#include "screens/ExpenseScreen.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace vorlane;
using bench::BenchEnvironment;
using bench::BenchVault;

AppContext& sharedContext(std::int64_t services) {
    static BenchEnvironment environment;
    return environment.context("vorlane-screen-bench-" + std::to_string(services),
                               BenchVault::withServices(services));
}

// One edit, as a form makes it: a service's monthly cost changes and the store says so, which
// also drops that organization's cached totals.
void editOneService(DataStore& store, ServiceRecord& service, long round) {
    service.monthlyCost = Decimal(round % 50 + 1);
    store.noteChanged(service);
}

// Times `screen.reload()` after each edit of one service's cost in the middle of the vault (so
// that the totals and its cost are worked out again), then puts the service back.
template <typename Screen>
void reloadAfterEachEdit(benchmark::State& state, DataStore& store, Screen& screen) {
    ServiceRecord& edited = *store.fetchAllServices().at(store.fetchAllServices().size() / 2);
    const Decimal original = edited.monthlyCost;
    long round = 0;
    for (auto _ : state) {
        editOneService(store, edited, ++round);
        screen.reload();
        benchmark::ClobberMemory();
    }
    edited.monthlyCost = original;
    store.noteChanged(edited);
}

void expenseScreenAfterChange(benchmark::State& state, ExpenseScreen::GroupBy groupBy) {
    AppContext& context = sharedContext(state.range(0));
    DataStore& store = context.store;
    ExpenseScreen screen(store, context.calendar, groupBy);
    reloadAfterEachEdit(state, store, screen);
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
    AppContext& context = sharedContext(state.range(0));
    DataStore& store = context.store;
    DashboardScreen screen(store, context.state, context.calendar);
    reloadAfterEachEdit(state, store, screen);
    state.counters["alerts"] = static_cast<double>(screen.alerts().size());
    state.counters["expiring"] = static_cast<double>(screen.expiringThisMonth().size());
}
BENCHMARK(dashboardScreenAfterChange)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// The chart of the next twelve months alone, which both screens above rebuild.
void costsDueChart(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    std::size_t bars = 0;
    for (auto _ : state) {
        const CostsDueChart chart(context.store, context.calendar);
        bars = chart.bars().size();
        benchmark::DoNotOptimize(bars);
    }
    state.counters["bars"] = static_cast<double>(bars);
}
BENCHMARK(costsDueChart)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
