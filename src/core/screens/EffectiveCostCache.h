#pragma once

#include "util/Decimal.h"

#include <string>
#include <unordered_map>

namespace vorlane {

struct ServiceRecord;

// Each service's `effectiveMonthlyCost` remembered between rebuilds of a screen. A yearly amount
// spread over the cycle is a decimal division (some 2 µs), and a screen over 100,000 services
// rebuilt after every change cannot afford tens of thousands of them each time. An entry is
// checked against the fields the cost is worked out from, so an edited record is worked out
// afresh and a record at a reused address is never given another's cost. A monthly amount above
// zero is its own answer and is not kept. Main thread only (the screens').
class EffectiveCostCache {
public:
    Decimal of(const ServiceRecord& service);

    // Drops the entries `of` was not asked about since the last call, so that the cache holds
    // only services that still exist.
    void sweep();

private:
    struct Entry {
        Decimal yearlyCost;
        std::string billingCycleRaw;
        Decimal effective;
        bool valid = false; // worked out at least once
        bool used = false;  // asked for since the last sweep
    };
    std::unordered_map<const ServiceRecord*, Entry> m_entries;
};

} // namespace vorlane
