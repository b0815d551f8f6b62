// The search and All Credentials screens at 10,000 and 100,000 services: their screen models
// rebuilt (what every keystroke and every store change costs), and the widgets as the person
// meets them: a keystroke in the search field to the results painted, and switching to
// "All Credentials" to its first paint. Same vaults as the store benchmarks (StoreBench.cpp);
// the widgets run on Qt's offscreen platform.

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
#include "screens/AllCredentialsScreen.h"
#include "screens/AllCredentialsView.h"
#include "screens/GlobalSearchScreen.h"
#include "screens/GlobalSearchView.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/DemoVault.h"
#include "util/UserCalendar.h"

#include <QApplication>
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

Environment& environment() {
    return *theEnvironment;
}

std::unique_ptr<DataStore> openStore(const std::string& path) {
    Environment& env = environment();
    auto opened = DataStore::open(path, env.keychain, env.calendar, env.timers);
    if (!opened) {
        throw std::runtime_error("cannot open " + path + ": " + opened.error());
    }
    return std::move(opened).value();
}

// One open vault per size with its context, shared by the benchmarks.
AppContext& sharedContext(std::int64_t services) {
    Vault& vault = environment().vaults[services];
    if (!vault.store) {
        const std::string path = (std::filesystem::temp_directory_path() /
                                  ("vorlane-bench-" + std::to_string(services) + ".sqlite"))
                                     .string();
        const bool fresh = !std::filesystem::exists(path);
        vault.store = openStore(path);
        if (fresh) {
            DemoVault::Options options;
            options.services = static_cast<int>(services);
            DemoVault::populate(*vault.store, benchNow, options);
        }
        Environment& env = environment();
        vault.actions = std::make_unique<ServiceActions>(*vault.store, env.state, env.calendar);
        vault.context = std::make_unique<AppContext>(
            AppContext{*vault.store, env.state, env.auth, env.calendar, env.timers, env.clipboard,
                       env.preferences, *vault.actions});
    }
    return *vault.context;
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
    theEnvironment = std::make_unique<Environment>();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    theEnvironment.reset();
    return 0;
}
