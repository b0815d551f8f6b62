// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace vorlane {

// Batches of items passed in order from one producing thread to one consuming thread, so that
// two cores can share a long job (one reads, the other files what was read). At most
// `maxBatches` wait at a time: a producer that is faster than its consumer waits rather than
// holding the whole job in memory twice. The producer `close`s when it is done, always.
template <typename T> class Handoff {
public:
    explicit Handoff(std::size_t maxBatches)
        : m_maxBatches(maxBatches) {}

    // Producer: blocks while `maxBatches` are waiting.
    void put(std::vector<T> batch) {
        std::unique_lock lock(m_mutex);
        m_space.wait(lock, [this] { return m_batches.size() < m_maxBatches; });
        m_batches.push_back(std::move(batch));
        m_ready.notify_one();
    }

    // Producer: nothing more will come.
    void close() {
        const std::scoped_lock lock(m_mutex);
        m_closed = true;
        m_ready.notify_one();
    }

    // Consumer: the next batch, waiting for it; nothing once the producer has closed and every
    // batch has been taken.
    std::optional<std::vector<T>> take() {
        std::unique_lock lock(m_mutex);
        m_ready.wait(lock, [this] { return !m_batches.empty() || m_closed; });
        if (m_batches.empty()) {
            return std::nullopt;
        }
        std::vector<T> batch = std::move(m_batches.front());
        m_batches.pop_front();
        m_space.notify_one();
        return batch;
    }

private:
    const std::size_t m_maxBatches;
    std::mutex m_mutex;
    std::condition_variable m_ready;
    std::condition_variable m_space;
    std::deque<std::vector<T>> m_batches;
    bool m_closed = false;
};

} // namespace vorlane
