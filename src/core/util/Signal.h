// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vorlane {

// A list of observers to notify: how core objects tell screens that something changed, without
// Qt. Not thread-safe: connect, disconnect and emit on the owner's thread (the main thread).
// Observers may disconnect themselves, or connect others, while being notified.
template <typename... Args> class Signal {
public:
    using Slot = std::function<void(Args...)>;
    using ConnectionId = std::uint64_t;

    // The id is never 0 and is what `disconnect` takes.
    ConnectionId connect(Slot slot) {
        m_slots.push_back({++m_lastId, std::make_shared<Slot>(std::move(slot))});
        return m_lastId;
    }

    void disconnect(ConnectionId id) {
        std::erase_if(m_slots, [id](const Entry& entry) { return entry.id == id; });
    }

    void emit(Args... args) const {
        // A copy, so that slots may change the list while it is being walked.
        const std::vector<Entry> slots = m_slots;
        for (const Entry& entry : slots) {
            (*entry.slot)(args...);
        }
    }

    std::size_t size() const { return m_slots.size(); }

private:
    struct Entry {
        ConnectionId id;
        std::shared_ptr<Slot> slot;
    };

    ConnectionId m_lastId = 0;
    std::vector<Entry> m_slots;
};

} // namespace vorlane
