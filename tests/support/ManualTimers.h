// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ManualClock.h"
#include "util/Timers.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace vorlane::testing {

// Timers driven by the test: nothing fires until `advance` moves the shared manual clock past a
// timer's deadline, and posted callbacks run only in `runPosted` (or `advance`).
class ManualTimers final : public Timers {
public:
    explicit ManualTimers(ManualClock& clock)
        : m_clock(clock) {}

    TimerId startOneShot(std::chrono::milliseconds delay, Callback callback) override {
        const TimerId id = ++m_lastId;
        m_pending.emplace(id, Pending{m_clock.now() + delay, std::move(callback)});
        return id;
    }

    void cancel(TimerId id) override { m_pending.erase(id); }

    void post(Callback callback) override {
        std::lock_guard lock(m_postedMutex);
        m_posted.push_back(std::move(callback));
    }

    // Runs the posted callbacks, including those they post in turn. Returns how many ran.
    int runPosted() {
        int ran = 0;
        for (;;) {
            std::vector<Callback> batch;
            {
                std::lock_guard lock(m_postedMutex);
                batch.swap(m_posted);
            }
            if (batch.empty()) {
                return ran;
            }
            for (auto& callback : batch) {
                callback();
                ++ran;
            }
        }
    }

    // Moves the clock forward by `by`, firing every timer that falls due, in deadline order, with
    // the clock set to each deadline as it fires.
    void advance(std::chrono::milliseconds by) {
        const Instant end = m_clock.now() + by;
        runPosted();
        for (;;) {
            auto next = std::min_element(
                m_pending.begin(), m_pending.end(), [](const auto& a, const auto& b) {
                    return a.second.deadline < b.second.deadline ||
                           (a.second.deadline == b.second.deadline && a.first < b.first);
                });
            if (next == m_pending.end() || next->second.deadline > end) {
                break;
            }
            Pending due = std::move(next->second);
            m_pending.erase(next);
            m_clock.set(std::max(m_clock.now(), due.deadline));
            due.callback();
            runPosted();
        }
        m_clock.set(end);
    }

    std::size_t pendingCount() const { return m_pending.size(); }

private:
    struct Pending {
        Instant deadline;
        Callback callback;
    };

    ManualClock& m_clock;
    TimerId m_lastId = 0;
    std::map<TimerId, Pending> m_pending;
    std::mutex m_postedMutex;
    std::vector<Callback> m_posted;
};

} // namespace vorlane::testing
