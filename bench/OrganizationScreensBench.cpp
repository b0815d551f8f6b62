// SPDX-License-Identifier: GPL-3.0-or-later
// The organization screens' models at the sizes that must stay fluid: the grid of 1,000
// organizations (20,000 services) in each sort order, and the detail of one organization with
// 5,000 services with every tab built, as a store change rebuilds them. Vaults are generated once
// into the temp folder by the demo generator and reused by later runs.

#include "BenchEnvironment.h"
#include "model/OrgDetailTab.h"
#include "model/Organization.h"
#include "screens/OrganizationDetailScreen.h"
#include "screens/OrganizationGridScreen.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace vorlane;

AppContext& vault(int organizations, int services) {
    static bench::BenchEnvironment environment;
    DemoVault::Options options;
    options.organizations = organizations;
    options.services = services;
    return environment.context("vorlane-bench-orgs-" + std::to_string(organizations) + "-" +
                                   std::to_string(services),
                               options);
}

void BM_OrganizationGridRebuild(benchmark::State& state) {
    AppContext& context = vault(1000, 20000);
    OrganizationGridScreen screen(context.store, context.state, context.calendar,
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
    AppContext& context = vault(1, 5000);
    Organization& organization = *context.store.fetchOrganizations().at(0);
    OrganizationDetailScreen screen(context, organization);
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
    AppContext& context = vault(1, 5000);
    Organization& organization = *context.store.fetchOrganizations().at(0);
    OrganizationDetailScreen screen(context, organization);
    for (auto _ : state) {
        benchmark::DoNotOptimize(screen.header());
        benchmark::DoNotOptimize(screen.tabs());
        benchmark::DoNotOptimize(screen.renewals());
    }
}
BENCHMARK(BM_OrganizationDetailRenewalsTab)->Unit(benchmark::kMillisecond);

} // namespace
