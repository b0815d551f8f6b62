// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <cstdint>

namespace vorlane {

class DataStore;

// Fills a store with realistic made-up clients and their services: hosting, domains, mailboxes,
// databases, keys, with costs, billing cycles and expiration dates spread around `now` (some
// expired, some due soon, most later), a few archived. For demonstrations and for the benchmarks;
// the same seed gives the same vault. Passwords and API keys (random, never written anywhere but
// the secret store) are added only when `withSecrets`. Saves at the end.
class DemoVault {
public:
    struct Options {
        int services = 200;
        // One organization per hundred services unless given.
        int organizations = 0;
        bool withSecrets = false;
        std::uint64_t seed = 20240601;
    };

    static void populate(DataStore& store, Instant now, const Options& options);
};

} // namespace vorlane
