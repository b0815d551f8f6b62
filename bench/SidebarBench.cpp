// The sidebar at 10,000 and 100,000 services: its counts and quick list rebuilt (what every change
// to the store costs while the window is open), and the widget as the person meets it: a store
// change to the counts repainted. Same vaults as the store benchmarks (StoreBench.cpp); the
// widget runs on Qt's offscreen platform.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "QtClipboard.h"
#include "QtPreferenceStore.h"
#include "SymbolIcon.h"
#include "TestTime.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "screens/SidebarModel.h"
#include "screens/SidebarView.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/DemoVault.h"
#include "util/UserCalendar.h"

#include <QApplication>
#include <QListView>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace vorlane;

// The instant and zone of the store benchmarks, so that both use the same generated files.
const Instant benchNow = testing::utc(2025, 6, 1, 12);

struct Vault {
    std::unique_ptr<DataStore> store;
    std::unique_ptr<ServiceActions> actions;
    std::unique_ptr<AppContext> context;
};

struct Environment {
    testing::ManualClock clock{benchNow};
    testing::ManualTimers timers{clock};
    UserCalendar calendar{clock, "Europe/Berlin"};
    LibsecretBackend backend; // never called: the bench vaults hold no secrets
    KeychainManager keychain{backend};
    QTemporaryDir folder;
    QtClipboard clipboard;
    QtPreferenceStore preferences{folder.filePath(QStringLiteral("preferences.ini"))};
    AppState state{clipboard, timers};
    AuthManager auth;
    std::map<std::int64_t, Vault> vaults;
};

// Made in main once the QApplication exists, and gone before it is.
std::unique_ptr<Environment> theEnvironment;

AppContext& sharedContext(std::int64_t services) {
    Environment& env = *theEnvironment;
    Vault& vault = env.vaults[services];
    if (!vault.store) {
        const std::string path = (std::filesystem::temp_directory_path() /
                                  ("vorlane-bench-" + std::to_string(services) + ".sqlite"))
                                     .string();
        const bool fresh = !std::filesystem::exists(path);
        auto opened = DataStore::open(path, env.keychain, env.calendar, env.timers);
        if (!opened) {
            throw std::runtime_error("cannot open " + path + ": " + opened.error());
        }
        vault.store = std::move(opened).value();
        if (fresh) {
            DemoVault::Options options;
            options.services = static_cast<int>(services);
            DemoVault::populate(*vault.store, benchNow, options);
        }
        vault.actions = std::make_unique<ServiceActions>(*vault.store, env.state, env.calendar);
        vault.context = std::make_unique<AppContext>(
            AppContext{*vault.store, env.state, env.auth, env.calendar, env.timers, env.clipboard,
                       env.preferences, *vault.actions});
    }
    return *vault.context;
}

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

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    SymbolIcon::installTheme();
    theEnvironment = std::make_unique<Environment>();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    theEnvironment.reset();
    return 0;
}
