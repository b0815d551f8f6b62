// SPDX-License-Identifier: GPL-3.0-or-later
// The sidebar at 10,000 and 100,000 services: its counts and quick list rebuilt (what every change
// to the store costs while the window is open), and the widget as the person meets it: a store
// change to the counts repainted. Same vaults as the store benchmarks (StoreBench.cpp); the
// widget runs on Qt's offscreen platform.

#include "WidgetBench.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "screens/SidebarModel.h"
#include "screens/SidebarView.h"
#include "store/DataStore.h"

#include <QCoreApplication>
#include <QListView>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace vorlane;
using bench::sharedContext;

// Every count and the quick list, as after any change to the store.
void sidebarModelRefresh(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    SidebarModel model(context.store, context.calendar, context.state);
    for (auto _ : state) {
        model.refresh();
        benchmark::DoNotOptimize(model.rows().data());
    }
    state.counters["credentials"] =
        static_cast<double>(model.badgeCount(SidebarItem::allCredentials));
}
BENCHMARK(sidebarModelRefresh)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// One count on its own, to see which query dominates.
void sidebarBadgeCount(benchmark::State& state, SidebarItem item) {
    AppContext& context = sharedContext(state.range(0));
    const SidebarModel model(context.store, context.calendar, context.state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(model.badgeCount(item));
    }
}
BENCHMARK_CAPTURE(sidebarBadgeCount, organizations, SidebarItem::organizations)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sidebarBadgeCount, expiringSoon, SidebarItem::expiringSoon)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sidebarBadgeCount, expired, SidebarItem::expired)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sidebarBadgeCount, allCredentials, SidebarItem::allCredentials)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

// A change noted on the store to the sidebar repainted with its new counts.
void sidebarChangeToPaint(benchmark::State& state) {
    AppContext& context = sharedContext(state.range(0));
    SidebarView view(context);
    view.resize(240, 760);
    view.show();
    Organization& first = *context.store.fetchOrganizations().front();
    for (auto _ : state) {
        context.store.noteChanged(first);
        QCoreApplication::processEvents();
        view.list()->viewport()->repaint();
    }
}
BENCHMARK(sidebarChangeToPaint)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
