// SPDX-License-Identifier: GPL-3.0-or-later
// The password health report at 10,000 services once their secrets are read: every password
// and API key digested and rated, then grouped and sorted. (The batch read from the Secret
// Service comes before this and is measured by the keyring's own round trips, not here.)

#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "passwords/PasswordHealth.h"
#include "secrets/SecretBackend.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <deque>
#include <string>

namespace {

using namespace vorlane;

void healthReport(benchmark::State& state) {
    const Instant now = Instant(std::chrono::seconds(1'780'000'000));
    std::deque<Organization> organizations;
    std::deque<ServiceRecord> services;
    std::vector<ServiceRecord*> pointers;
    std::unordered_map<std::string, SecretBytes> read;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        if (i % 30 == 0) {
            organizations.push_back(Organization::created(now));
            organizations.back().name = "Client " + std::to_string(i / 30);
        }
        ServiceRecord& service = services.emplace_back(ServiceRecord::created(now));
        service.title = "Service " + std::to_string(i);
        service.organization = &organizations.back();
        service.passwordChangedAt = now - std::chrono::hours(24 * (i % 700));
        pointers.push_back(&service);
        if (i % 10 == 9) {
            continue; // one in ten without a password
        }
        service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        // Mostly strong and distinct; one in twenty shared, one in fifty a common word.
        const std::string password = i % 50 == 0   ? "summer2024"
                                     : i % 20 == 0 ? "Shared-Agency-Pass-" + std::to_string(i % 7)
                                                   : "k7#Vq2!" + std::to_string(i * 7919) + "xZ$";
        if (i % 3 == 0) {
            service.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
        }
        read[service.secretKeychainID] = SecretBytes(password.begin(), password.end());
        if (!service.apiKeyKeychainID.empty()) {
            const std::string key = "sk_live_" + std::to_string(i * 104729) + "QxZ";
            read[service.apiKeyKeychainID] = SecretBytes(key.begin(), key.end());
        }
    }
    std::size_t findings = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto secrets = read; // the report wipes what it is given
        state.ResumeTiming();
        findings = PasswordHealth::fromSecrets(pointers, secrets, now).count();
        benchmark::DoNotOptimize(findings);
    }
    state.counters["findings"] = static_cast<double>(findings);
}
BENCHMARK(healthReport)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace
