// SPDX-License-Identifier: GPL-3.0-or-later
// Helper of the crash test: opens the vault given as its argument and saves one generation after
// another (see CrashState.h) until it is killed, announcing each save on stdout before and after.

#include "CrashState.h"
#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "TestTime.h"
#include "secrets/KeychainManager.h"
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
        std::fprintf(stderr, "crash child: %s\n", opened.error().c_str());
        return 1;
    }
    const std::unique_ptr<DataStore> store = std::move(opened).value();
    const auto start = testing::crash::generationOf(*store);
    if (!start) {
        std::fprintf(stderr, "crash child: the vault was not set up\n");
        return 1;
    }
    for (long generation = *start + 1;; ++generation) {
        testing::crash::advance(*store, generation, clock.now());
        std::printf("saving %ld\n", generation);
        std::fflush(stdout);
        if (!store->save()) {
            return 1;
        }
        std::printf("saved %ld\n", generation);
        std::fflush(stdout);
    }
}
