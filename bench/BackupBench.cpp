// SPDX-License-Identifier: GPL-3.0-or-later
// Backing up and restoring the generator's vaults: the snapshot (records and the batched read of
// every secret) sealed into a backup file, at 10,000 services with 2,000 and with 10,000
// passwords in the keyring and at 100,000 services with 10,000; the restore into a fresh vault
// and a keyring that lacks the backup's secrets, of 1,000 and 10,000 services with their
// passwords, and of the records alone at 100,000 services. Run one size at a time
// (--benchmark_filter) so that each has a keyring of its own. More secrets are not planted:
// GNOME Keyring makes each item cost more than the one before, so 100,000 would take hours.
// The key derivation is left out (a cheap Argon2id cost): it costs the same whatever the vault
// holds, and CryptoBench's figures cover it.
//
// Run under tests/support/run-with-keyring.sh, which gives the process a keyring of its own. Its
// default collection is switched to GNOME Keyring's in-memory session collection: the login
// collection writes its whole file again for every item, which would make filling 100,000
// items take days and measure the disk rather than this program.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "backup/BackupFile.h"
#include "backup/BackupRestore.h"
#include "backup/BackupSnapshot.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/DemoVault.h"
#include "util/UserCalendar.h"

#include <benchmark/benchmark.h>
#include <libsecret/secret.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace vorlane;

const BackupKdfParameters cheapKdf{64, 1, 1};
constexpr std::string_view password = "bench backup password";

[[noreturn]] void fail(const std::string& why) {
    std::fprintf(stderr, "backup bench: %s\n", why.c_str());
    std::abort();
}

// Points the default alias at the session collection, on the private keyring only.
void useSessionCollection() {
    if (std::getenv("VORLANE_TEST_KEYRING_PASSWORD") == nullptr) {
        fail("run it through tests/support/run-with-keyring.sh, never on your own keyring");
    }
    GError* error = nullptr;
    SecretService* service = secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, &error);
    SecretCollection* session =
        service ? secret_collection_for_alias_sync(service, "session", SECRET_COLLECTION_NONE,
                                                   nullptr, &error)
                : nullptr;
    if (!session || !secret_service_set_alias_sync(service, "default", session, nullptr, &error)) {
        fail(std::string("cannot use the session collection: ") +
             (error ? error->message : "not there"));
    }
    g_object_unref(session);
    g_object_unref(service);
}

// One vault file in a temp folder, opened on the benchmark's keyring; removed when done.
struct Vault {
    Vault() {
        char pattern[] = "/tmp/vorlane-backup-bench-XXXXXX";
        folder = ::mkdtemp(pattern);
        auto opened = DataStore::open(folder + "/vault.sqlite", keychain, calendar, timers);
        if (!opened) {
            fail(opened.error());
        }
        store = std::move(opened).value();
    }
    ~Vault() {
        store.reset();
        std::filesystem::remove_all(folder);
    }
    Vault(const Vault&) = delete;
    Vault& operator=(const Vault&) = delete;

    std::string folder;
    // Autosave never fires: the runs save themselves.
    testing::ManualClock clock{Instant(std::chrono::hours(24 * 20000))};
    testing::ManualTimers timers{clock};
    UserCalendar calendar{clock, "UTC"};
    LibsecretBackend backend;
    KeychainManager keychain{backend};
    std::unique_ptr<DataStore> store;
};

// The generator's vault of `services` services, the first `secrets` of them (in title order)
// with a password in the keyring; made once per size and kept for every benchmark of that size.
Vault& sourceVault(int services, int secrets) {
    static std::map<std::pair<int, int>, std::unique_ptr<Vault>> vaults;
    std::unique_ptr<Vault>& vault = vaults[{services, secrets}];
    if (!vault) {
        useSessionCollection();
        vault = std::make_unique<Vault>();
        DemoVault::Options options;
        options.services = services;
        DemoVault::populate(*vault->store, vault->clock.now(), options);
        std::vector<std::pair<std::string, SecretBytes>> planted;
        for (ServiceRecord* service : vault->store->fetchAllServices(true)) {
            if (static_cast<int>(planted.size()) == secrets) {
                break;
            }
            service->secretKeychainID = ServiceRecord::makeSecretKeychainID();
            const std::string text = "pw-" + std::to_string(planted.size() + 1) + "-Xq!v7";
            planted.emplace_back(service->secretKeychainID, SecretBytes(text.begin(), text.end()));
            vault->store->noteChanged(*service);
        }
        if (!vault->keychain.addMany(planted)) {
            fail("cannot plant the secrets");
        }
        if (!vault->store->save()) {
            fail("cannot save the source vault");
        }
    }
    return *vault;
}

BackupContents snapshot(Vault& vault) {
    auto contents = BackupSnapshot::take(*vault.store, vault.clock.now());
    if (!contents) {
        fail("the keyring could not be read");
    }
    return std::move(*contents);
}

void BM_Backup(benchmark::State& state) {
    Vault& vault = sourceVault(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    std::size_t bytes = 0;
    std::size_t secrets = 0;
    for (auto _ : state) {
        const BackupContents contents = snapshot(vault);
        const std::string file = BackupFile::seal(contents, password, cheapKdf);
        bytes = file.size();
        secrets = contents.secrets.size();
        benchmark::DoNotOptimize(file.data());
    }
    state.counters["secrets"] = static_cast<double>(secrets);
    state.counters["fileMB"] = static_cast<double>(bytes) / 1e6;
}
BENCHMARK(BM_Backup)
    ->Args({10000, 2000})
    ->Args({10000, 10000})
    ->Args({100000, 10000})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The restore alone, as on a new machine: a fresh vault, and a backup made elsewhere whose
// secrets (one for each of the first `secrets` services) the keyring has never seen. Sealing and
// opening the backup happen before the clock starts. One run only: a second would find the
// secrets already there.
void BM_Restore(benchmark::State& state) {
    BackupContents made = snapshot(sourceVault(static_cast<int>(state.range(0)), 0));
    for (std::size_t i = 0;
         i < made.services.size() && i < static_cast<std::size_t>(state.range(1)); ++i) {
        std::string& account = made.services[i].record.secretKeychainID;
        account = ServiceRecord::makeSecretKeychainID();
        made.secrets[account] = "restored-" + std::to_string(i) + "-Zk!3";
    }
    const std::string file = BackupFile::seal(made, password, cheapKdf);
    std::size_t written = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto opened = BackupFile::open(file, password);
        if (!opened) {
            fail(opened.error());
        }
        auto target = std::make_unique<Vault>();
        state.ResumeTiming();
        BackupRestore run(*target->store, std::move(opened).value());
        while (run.step(200)) {
        }
        if (run.error()) {
            fail(*run.error());
        }
        written = run.summary().secretsWritten;
        state.PauseTiming();
        target.reset();
        state.ResumeTiming();
    }
    state.counters["secrets"] = static_cast<double>(written);
}
BENCHMARK(BM_Restore)
    ->Args({1000, 1000})
    ->Args({10000, 10000})
    ->Args({100000, 0})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
