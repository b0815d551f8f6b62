// The organization screens' models at the sizes that must stay fluid: the grid of 1,000
// organizations (20,000 services) in each sort order, and the detail of one organization with
// 5,000 services with every tab built, as a store change rebuilds them. Vaults are generated once
// into the temp folder by the demo generator and reused by later runs.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "QtPreferenceStore.h"
#include "TestTime.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/Clipboard.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "model/OrgDetailTab.h"
#include "model/Organization.h"
#include "screens/OrganizationDetailScreen.h"
#include "screens/OrganizationGridScreen.h"
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

// The screens never touch the clipboard here; AppState just needs one.
class UnusedClipboard final : public Clipboard {
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
    UnusedClipboard clipboard;
    QtPreferenceStore preferences{
        QString::fromStdString((std::filesystem::temp_directory_path() / "vorlane-bench.ini"))};
    AppState state{clipboard, timers};
    AuthManager auth;
};

Environment& environment() {
    static Environment instance;
    return instance;
}

struct Vault {
    std::unique_ptr<DataStore> store;
    std::unique_ptr<ServiceActions> actions;
    std::unique_ptr<AppContext> context;
};

Vault& vault(int organizations, int services) {
    static std::map<std::pair<int, int>, Vault> vaults;
    Vault& v = vaults[{organizations, services}];
    if (v.store) {
        return v;
    }
    Environment& env = environment();
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("vorlane-bench-orgs-" + std::to_string(organizations) + "-" +
                               std::to_string(services) + ".sqlite"))
                                 .string();
    const bool exists = std::filesystem::exists(path);
    auto opened = DataStore::open(path, env.keychain, env.calendar, env.timers);
    if (!opened) {
        throw std::runtime_error("cannot open " + path + ": " + opened.error());
    }
    v.store = std::move(opened).value();
    if (!exists) {
        DemoVault::Options options;
        options.organizations = organizations;
        options.services = services;
        DemoVault::populate(*v.store, benchNow, options);
    }
    v.actions = std::make_unique<ServiceActions>(*v.store, env.state, env.calendar);
    v.context = std::make_unique<AppContext>(AppContext{*v.store, env.state, env.auth, env.calendar,
                                                        env.timers, env.clipboard, env.preferences,
                                                        *v.actions});
    return v;
}

void BM_OrganizationGridRebuild(benchmark::State& state) {
    Vault& v = vault(1000, 20000);
    OrganizationGridScreen screen(*v.store, environment().state, environment().calendar,
                                  OrganizationFilter::all);
    screen.setSortOrder(static_cast<OrganizationGridScreen::SortOrder>(state.range(0)));
    for (auto _ : state) {
        screen.rebuild();
        benchmark::DoNotOptimize(screen.cards().data());
    }
    state.SetLabel(std::string(OrganizationGridScreen::label(screen.sortOrder())) + ", " +
                   std::to_string(screen.cards().size()) + " cards");
}
BENCHMARK(BM_OrganizationGridRebuild)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

void BM_OrganizationDetailEveryTab(benchmark::State& state) {
    Vault& v = vault(1, 5000);
    Organization& organization = *v.store->fetchOrganizations().at(0);
    OrganizationDetailScreen screen(*v.context, organization);
    for (auto _ : state) {
        benchmark::DoNotOptimize(screen.header());
        benchmark::DoNotOptimize(screen.tabs());
        benchmark::DoNotOptimize(screen.overview());
        for (const OrgDetailTab& tab : OrgDetailTab::allCases()) {
            if (!tab.serviceTypes().empty()) {
                benchmark::DoNotOptimize(screen.serviceTab(tab));
            }
        }
        benchmark::DoNotOptimize(screen.expenses());
        benchmark::DoNotOptimize(screen.renewals());
        benchmark::DoNotOptimize(screen.sharing());
    }
    state.SetLabel(std::to_string(organization.services.size()) + " services");
}
BENCHMARK(BM_OrganizationDetailEveryTab)->Unit(benchmark::kMillisecond);

// What one store change costs the detail screen: the header, the tab titles and the tab shown,
// here the heaviest one (renewals bands every dated service).
void BM_OrganizationDetailRenewalsTab(benchmark::State& state) {
    Vault& v = vault(1, 5000);
    Organization& organization = *v.store->fetchOrganizations().at(0);
    OrganizationDetailScreen screen(*v.context, organization);
    for (auto _ : state) {
        benchmark::DoNotOptimize(screen.header());
        benchmark::DoNotOptimize(screen.tabs());
        benchmark::DoNotOptimize(screen.renewals());
    }
}
BENCHMARK(BM_OrganizationDetailRenewalsTab)->Unit(benchmark::kMillisecond);

} // namespace
