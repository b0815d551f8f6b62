// The search and All Credentials screens at 10,000 and 100,000 services: their screen models
// rebuilt (what every keystroke and every store change costs), and the widgets as the person
// meets them: a keystroke in the search field to the results painted, and switching to
// "All Credentials" to its first paint. Same vaults as the store benchmarks (StoreBench.cpp);
// the widgets run on Qt's offscreen platform.

#include "BenchEnvironment.h"
#include "SymbolIcon.h"
#include "screens/AllCredentialsScreen.h"
#include "screens/AllCredentialsView.h"
#include "screens/GlobalSearchScreen.h"
#include "screens/GlobalSearchView.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using namespace vorlane;
using bench::BenchEnvironment;
using bench::BenchVault;

// Made in main once the QApplication exists, and gone before it is.
std::unique_ptr<BenchEnvironment> theEnvironment;

// One open vault per size with its context, shared by the benchmarks (the store benchmarks' files).
AppContext& sharedContext(std::int64_t services) {
    return theEnvironment->context("vorlane-bench-" + std::to_string(services),
                                   BenchVault::withServices(services));
}

void searchScreen(benchmark::State& state, const char* query, bool filtered) {
    AppContext& context = sharedContext(state.range(0));
    context.state.setSearchQuery(query);
    GlobalSearchScreen screen(context);
    if (filtered) {
        screen.setTypeFilter(ServiceType::vps);
    }
    for (auto _ : state) {
        screen.rebuild();
        benchmark::DoNotOptimize(screen.countText());
    }
    state.counters["results"] =
        static_cast<double>(screen.organizations().size() + screen.services().size());
    context.state.setSearchQuery({});
}
BENCHMARK_CAPTURE(searchScreen, common, "hetzner", false)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchScreen, commonVpsOnly, "hetzner", true)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchScreen, rare, "srv42.acme", false)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

void allCredentialsScreen(benchmark::State& state, bool filtered) {
    AppContext& context = sharedContext(state.range(0));
    AllCredentialsScreen screen(context);
    if (filtered) {
        screen.setTypeFilter(ServiceType::mailbox);
        screen.setStatusFilter(ServiceStatus::active);
    }
    for (auto _ : state) {
        screen.rebuild();
        benchmark::DoNotOptimize(screen.countText());
    }
    state.counters["rows"] = static_cast<double>(screen.rows().size());
}
BENCHMARK_CAPTURE(allCredentialsScreen, all, false)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(allCredentialsScreen, mailboxActive, true)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

// One keystroke: the query grows by a letter or loses it, the view rebuilds its model and the
// visible rows are painted.
void searchKeystrokeToPaint(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    context.state.setSearchQuery("hetzne");
    GlobalSearchView view(context);
    view.resize(1040, 760);
    view.show();
    bool longer = true;
    for (auto _ : state) {
        context.state.setSearchQuery(longer ? "hetzner" : "hetzne");
        view.repaint();
        longer = !longer;
    }
    context.state.setSearchQuery({});
}
BENCHMARK(searchKeystrokeToPaint)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// Choosing "All Credentials": the screen is built, laid out and painted.
void switchToAllCredentials(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    for (auto _ : state) {
        AllCredentialsView view(context);
        view.resize(1040, 760);
        view.show();
        view.repaint();
    }
}
BENCHMARK(switchToAllCredentials)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    SymbolIcon::installTheme();
    theEnvironment = std::make_unique<BenchEnvironment>();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    theEnvironment.reset();
    return 0;
}
