// SPDX-License-Identifier: GPL-3.0-or-later
// Importing 10,000 KeePass entries in 250 client groups: the file read and previewed (what the
// import sheet does before the user confirms), and the whole import into a vault with every
// password written to the keyring once. Run under tests/support/run-with-keyring.sh, which
// gives the process a keyring of its own.

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "importer/ImportMapper.h"
#include "importer/ImportReader.h"
#include "importer/ImportRun.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace vorlane;

constexpr int groupCount = 250;

// A KeePass XML export as KeePassXC writes one (KDBX 4 dates, a history version per entry).
std::string makeExport(int entryCount) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KeePassFile><Meta>"
                       "<RecycleBinUUID>AAAAAAAAAAAAAAAAAAAAAA==</RecycleBinUUID></Meta><Root>"
                       "<Group><UUID>AQ==</UUID><Name>Root</Name>\n";
    const auto string = [](const char* key, const std::string& value) {
        return std::string("<String><Key>") + key + "</Key><Value>" + value + "</Value></String>";
    };
    for (int g = 0; g < groupCount; ++g) {
        text += "<Group><UUID>Ag==</UUID><Name>Client " + std::to_string(g) + "</Name>\n";
        for (int e = g; e < entryCount; e += groupCount) {
            const std::string n = std::to_string(e);
            std::string entry = "<Entry><UUID>Aw==</UUID><Tags>web;prod</Tags><Times>"
                                "<CreationTime>kFRN3Q4AAAA=</CreationTime>"
                                "<LastModificationTime>qCLO3w4AAAA=</LastModificationTime>"
                                "<ExpiryTime>wMkp4w4AAAA=</ExpiryTime><Expires>" +
                                std::string(e % 4 == 0 ? "True" : "False") + "</Expires></Times>";
            entry += string("Title", "Service " + n) + string("UserName", "user" + n) +
                     string("Password", "secret-" + n + "-Xy!") +
                     string("URL", "https://host" + n + ".client.test/login") +
                     string("Notes", "Hosting account " + n + " with its control panel") +
                     string("Customer number", "C-" + n);
            text += entry + "<History>" + entry + "</Entry></History></Entry>\n";
        }
        text += "</Group>\n";
    }
    return text + "</Group></Root></KeePassFile>\n";
}

// Built once per size: the benchmarks time the reading, not the writing of the text.
const std::string& keepassExport(int entryCount) {
    static const std::string tenThousand = makeExport(10000);
    static const std::string oneThousand = makeExport(1000);
    return entryCount == 10000 ? tenThousand : oneThousand;
}

// A fresh vault in the temp folder, removed when done.
struct BenchVault {
    BenchVault() {
        char pattern[] = "/tmp/vorlane-import-bench-XXXXXX";
        folder = ::mkdtemp(pattern);
        auto opened = DataStore::open(folder + "/vault.sqlite", keychain, calendar, timers);
        if (!opened) {
            std::abort();
        }
        store = std::move(opened).value();
    }
    ~BenchVault() {
        store.reset();
        std::filesystem::remove_all(folder);
    }
    std::string folder;
    // Autosave never fires: the run saves after each step itself.
    vorlane::testing::ManualClock clock{Instant(std::chrono::hours(24 * 20000))};
    UserCalendar calendar{clock, "UTC"};
    vorlane::testing::ManualTimers timers{clock};
    LibsecretBackend backend;
    KeychainManager keychain{backend};
    std::unique_ptr<DataStore> store;
};

std::vector<ImportRow> preview(const DataStore& store, int entryCount) {
    auto file = ImportReader::read(keepassExport(entryCount));
    if (!file) {
        std::abort();
    }
    auto rows = ImportMapper::map(std::move(file).value().entries, {});
    ImportMapper::markDuplicates(rows, store);
    return rows;
}

void BM_ReadAndPreview(benchmark::State& state) {
    BenchVault vault;
    for (auto _ : state) {
        auto rows = preview(*vault.store, 10000);
        benchmark::DoNotOptimize(rows.data());
    }
    state.counters["MB"] = static_cast<double>(keepassExport(10000).size()) / 1e6;
}
BENCHMARK(BM_ReadAndPreview)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole import of 1,000 entries, as the sheet runs it: steps of 50 rows, each ended by a
// save. Not 10,000: GNOME Keyring rewrites its file for every item, so that would take hours.
void BM_Import(benchmark::State& state) {
    const int entryCount = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        BenchVault vault;
        auto rows = preview(*vault.store, entryCount);
        state.ResumeTiming();
        ImportRun run(*vault.store, vault.clock.now(), std::move(rows));
        std::size_t steps = 0;
        while (run.step(50)) {
            ++steps;
        }
        if (run.report().created != static_cast<std::size_t>(entryCount) ||
            !run.report().failure.empty()) {
            state.SkipWithError("the import did not write every entry");
        }
        state.counters["steps"] = static_cast<double>(steps);
        state.PauseTiming();
        for (ServiceRecord* service : vault.store->fetchAllServices(true)) {
            vault.store->deleteServiceSecrets(*service); // leave the keyring as it was
        }
        state.ResumeTiming();
    }
}
BENCHMARK(BM_Import)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

} // namespace
