// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LibsecretBackend.h"
#include "ManualClock.h"
#include "ManualTimers.h"
#include "TestTime.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/DemoVault.h"
#include "util/UserCalendar.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace vorlane::bench {

// The demo data is spread around this instant and the clock stands on it, so that every run sees
// the same expired and expiring services.
inline const Instant benchNow = testing::utc(2025, 6, 1, 12);

// The benchmarks' vault files, made by the generator behind `vorlane-cli demo` into the temp
// folder once and reused by later runs and by every benchmark program that names the same file,
// and what they open with: a clock standing on benchNow, its timers, a calendar in Berlin and a
// keychain that is never called (the bench vaults hold no secrets). Every store opened here must
// close before this object goes: closing saves what a benchmark left pending, through this
// calendar and these timers. Main thread only.
class BenchVault {
public:
    // The generator's options for `services` services over its default organizations.
    static DemoVault::Options withServices(std::int64_t services) {
        DemoVault::Options options;
        options.services = static_cast<int>(services);
        return options;
    }

    // The path of `name`.sqlite in the temp folder, generated with `options` first when the file
    // is not there yet.
    std::string generatedPath(const std::string& name, const DemoVault::Options& options) {
        const std::string path =
            (std::filesystem::temp_directory_path() / (name + ".sqlite")).string();
        if (!std::filesystem::exists(path)) {
            DemoVault::populate(*open(path), benchNow, options);
        }
        return path;
    }

    // Throws std::runtime_error when the file cannot be opened: no benchmark can run without it.
    std::unique_ptr<DataStore> open(const std::string& path) {
        auto opened = DataStore::open(path, m_keychain, calendar, timers);
        if (!opened) {
            throw std::runtime_error("cannot open " + path + ": " + opened.error());
        }
        return std::move(opened).value();
    }

    testing::ManualClock clock{benchNow};
    testing::ManualTimers timers{clock};
    UserCalendar calendar{clock, "Europe/Berlin"};

private:
    LibsecretBackend m_backend;
    KeychainManager m_keychain{m_backend};
};

} // namespace vorlane::bench
