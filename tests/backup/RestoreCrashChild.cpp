// SPDX-License-Identifier: GPL-3.0-or-later
// Helper of the restore crash test: restores one generation after another into the vault given
// as its argument until it is killed. Generation g is an organization "Generation g" with
// `servicesPerGeneration` services, each with the password "pw g k", restored from a backup's
// contents as the window restores them. Announces "restoring g" before the first secret is
// written, "saving g" before the step that writes the last secrets and saves the records, and
// "restored g" after it.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "RestoreCrashGeneration.h"
#include "TestTime.h"
#include "backup/BackupRestore.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

#include <cstdio>
#include <string>

int main(int argc, char* argv[]) {
    using namespace vorlane;
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s VAULT\n", argv[0]);
        return 2;
    }
    testing::ManualClock clock(testing::utc(2025, 1, 1));
    testing::ManualTimers timers(clock);
    UserCalendar calendar(clock, "UTC");
    LibsecretBackend backend;
    KeychainManager keychain(backend);
    auto opened = DataStore::open(argv[1], keychain, calendar, timers);
    if (!opened) {
        std::fprintf(stderr, "restore crash child: %s\n", opened.error().c_str());
        return 1;
    }
    const std::unique_ptr<DataStore> store = std::move(opened).value();
    constexpr std::size_t secretsPerStep = 4;
    for (long generation = static_cast<long>(store->fetchOrganizations(true).size()) + 1;;
         ++generation) {
        BackupRestore run(*store, testing::restoreCrash::contents(generation, clock.now()));
        std::printf("restoring %ld\n", generation);
        std::fflush(stdout);
        bool more = true;
        while (more) {
            if (run.total() - run.done() <= secretsPerStep) {
                std::printf("saving %ld\n", generation);
                std::fflush(stdout);
            }
            more = run.step(secretsPerStep);
        }
        if (run.error()) {
            std::fprintf(stderr, "restore crash child: %s\n", run.error()->c_str());
            return 1;
        }
        std::printf("restored %ld\n", generation);
        std::fflush(stdout);
    }
}
