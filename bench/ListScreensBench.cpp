// SPDX-License-Identifier: GPL-3.0-or-later
// The search and All Credentials screens at 10,000 and 100,000 services: their screen models
// rebuilt (what every keystroke and every store change costs), and the widgets as the person
// meets them: a keystroke in the search field to the results painted, and switching to
// "All Credentials" to its first paint. Same vaults as the store benchmarks (StoreBench.cpp);
// the widgets run on Qt's offscreen platform.

#include "WidgetBench.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "screens/AllCredentialsScreen.h"
#include "screens/AllCredentialsView.h"
#include "screens/GlobalSearchScreen.h"
#include "screens/GlobalSearchView.h"
#include "store/DataStore.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace vorlane;
using bench::sharedContext;

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
