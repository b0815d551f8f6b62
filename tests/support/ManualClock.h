// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Clock.h"

#include <chrono>

namespace vorlane::testing {

// A clock that stands still until the test moves it.
class ManualClock final : public Clock {
public:
    explicit ManualClock(Instant start = Instant{})
        : m_now(start) {}

    Instant now() const override { return m_now; }
    void set(Instant instant) { m_now = instant; }
    void advance(std::chrono::milliseconds by) { m_now += by; }

private:
    Instant m_now;
};

} // namespace vorlane::testing
