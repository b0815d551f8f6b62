// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace vorlane {

// Port: the main loop's timers. Every callback runs on the main loop (the thread that owns the
// implementation), never on the caller's thread, so that core objects touched from callbacks need
// no locks.
class Timers {
public:
    using Callback = std::function<void()>;
    using TimerId = std::uint64_t;

    virtual ~Timers() = default;

    // Runs `callback` once, `delay` from now. Main thread only. The id is never 0.
    virtual TimerId startOneShot(std::chrono::milliseconds delay, Callback callback) = 0;
    // Stops a timer before it fires; an unknown, fired or cancelled id is ignored. Main thread
    // only.
    virtual void cancel(TimerId id) = 0;
    // Runs `callback` on the main loop as soon as it is idle. Safe from any thread.
    virtual void post(Callback callback) = 0;
};

} // namespace vorlane
