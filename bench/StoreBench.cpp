// SPDX-License-Identifier: GPL-3.0-or-later
// The vault store at the sizes of a busy agency: 10,000 and 100,000 services over 100 and 1,000
// organizations, made by the same generator as `vorlane-cli demo`. Vaults are generated once
// into the temp folder and reused by later runs.

#include "BenchVault.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace vorlane;
using bench::BenchVault;

BenchVault& environment() {
    static BenchVault instance;
    return instance;
}

std::string vaultPath(std::int64_t services) {
    return environment().generatedPath("vorlane-bench-" + std::to_string(services),
                                       BenchVault::withServices(services));
}

// One open store per size, shared by the query benchmarks.
DataStore& sharedStore(std::int64_t services) {
    // The environment first, so that it outlives the stores (see BenchVault).
    BenchVault& vaults = environment();
    static std::map<std::int64_t, std::unique_ptr<DataStore>> stores;
    auto& store = stores[services];
    if (!store) {
        store = vaults.open(vaultPath(services));
    }
    return *store;
}

double residentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

void openVault(benchmark::State& state) {
    const std::string path = vaultPath(state.range(0));
    const double before = residentMegabytes();
    double after = before;
    std::unique_ptr<DataStore> store;
    for (auto _ : state) {
        state.PauseTiming(); // closing the previous round's store is not part of opening
        store.reset();
        state.ResumeTiming();
        store = environment().open(path);
        benchmark::DoNotOptimize(store.get());
        after = residentMegabytes();
    }
    // What the open store adds to the process, and the whole process with it open (an upper
    // bound: it includes the benchmark program and memory kept from earlier rounds).
    state.counters["storeMB"] = after - before;
    state.counters["residentMB"] = after;
}
BENCHMARK(openVault)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond)->Iterations(3);

void searchQuery(benchmark::State& state, const char* query) {
    DataStore& store = sharedStore(state.range(0));
    std::size_t found = 0;
    for (auto _ : state) {
        found = store.search(query).size() + store.searchOrganizations(query).size();
        benchmark::DoNotOptimize(found);
    }
    state.counters["results"] = static_cast<double>(found);
}
// A provider shared by a tenth of the vault, and one host name.
BENCHMARK_CAPTURE(searchQuery, common, "HETZNER")
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchQuery, rare, "srv42.acme")
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

// Everything the sidebar badges and the dashboard totals ask for on one redraw.
void sidebarCountsAndTotals(benchmark::State& state) {
    DataStore& store = sharedStore(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(store.fetchOrganizations().size());
        benchmark::DoNotOptimize(store.fetchFavorites().size());
        benchmark::DoNotOptimize(store.fetchExpiringSoon(30).size());
        benchmark::DoNotOptimize(store.fetchExpired().size());
        benchmark::DoNotOptimize(store.fetchAllServices(false).size());
        benchmark::DoNotOptimize(store.fetchArchivedOrganizations().size());
        benchmark::DoNotOptimize(store.totalActiveServices());
        benchmark::DoNotOptimize(store.totalMonthlyCost());
        benchmark::DoNotOptimize(store.totalYearlyCost());
    }
}
BENCHMARK(sidebarCountsAndTotals)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// An edit in a form: one service changes and is saved (a durable commit: fsync of the log).
void saveOneChangedRecord(benchmark::State& state) {
    DataStore& store = sharedStore(state.range(0));
    ServiceRecord& service = *store.fetchAllServices().at(store.fetchAllServices().size() / 2);
    const std::string original = service.notes;
    long round = 0;
    for (auto _ : state) {
        service.notes = "edited " + std::to_string(++round);
        store.noteChanged(service);
        if (!store.save()) {
            state.SkipWithError("save failed");
        }
    }
    service.notes = original;
    store.noteChanged(service);
    store.save();
}
BENCHMARK(saveOneChangedRecord)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
