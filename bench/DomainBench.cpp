// SPDX-License-Identifier: GPL-3.0-or-later
// The per-record rules that every list redraw evaluates, over 10,000 and 100,000 services.

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "util/SystemClock.h"
#include "util/UserCalendar.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <deque>

namespace {

using namespace vorlane;

std::deque<ServiceRecord> makeServices(std::int64_t count, Instant now) {
    std::deque<ServiceRecord> services;
    for (std::int64_t i = 0; i < count; ++i) {
        ServiceRecord& service = services.emplace_back(ServiceRecord::created(now));
        service.expirationDate =
            now + std::chrono::hours(i % (24 * 400)) - std::chrono::hours(24 * 30);
        service.monthlyCost = i % 3 == 0 ? Decimal(0) : *Decimal::fromString("12.5");
        service.yearlyCost = Decimal(240);
        service.setBillingCycle(i % 2 == 0 ? BillingCycle::annual : BillingCycle::biennial);
    }
    return services;
}

void expirationStates(benchmark::State& state) {
    const SystemClock clock;
    const UserCalendar calendar(clock);
    const auto services = makeServices(state.range(0), clock.now());
    for (auto _ : state) {
        int expired = 0;
        for (const ServiceRecord& service : services) {
            expired += service.expirationState(calendar) == ExpirationState::expired;
        }
        benchmark::DoNotOptimize(expired);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(expirationStates)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void organizationCosts(benchmark::State& state) {
    const SystemClock clock;
    auto services = makeServices(state.range(0), clock.now());
    Organization organization = Organization::created(clock.now());
    for (ServiceRecord& service : services) {
        organization.services.push_back(&service);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(organization.monthlyCost());
        benchmark::DoNotOptimize(organization.yearlyCost());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(organizationCosts)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
