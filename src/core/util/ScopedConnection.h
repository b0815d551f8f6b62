// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Signal.h"

#include <functional>
#include <utility>

namespace vorlane {

// A connection to a Signal that ends when this object does: how a screen listens to the store or
// the navigation state without outliving its slot. The signal must outlive the connection.
// Move-only; same thread as the signal.
class ScopedConnection {
public:
    ScopedConnection() = default;
    template <typename... Args>
    ScopedConnection(Signal<Args...>& signal, typename Signal<Args...>::Slot slot) {
        const auto id = signal.connect(std::move(slot));
        m_disconnect = [&signal, id] {
            signal.disconnect(id);
        };
    }
    ~ScopedConnection() { reset(); }
    ScopedConnection(ScopedConnection&& other) noexcept
        : m_disconnect(std::exchange(other.m_disconnect, {})) {}
    ScopedConnection& operator=(ScopedConnection&& other) noexcept {
        if (this != &other) {
            reset();
            m_disconnect = std::exchange(other.m_disconnect, {});
        }
        return *this;
    }
    ScopedConnection(const ScopedConnection&) = delete;
    ScopedConnection& operator=(const ScopedConnection&) = delete;

    void reset() {
        if (m_disconnect) {
            std::exchange(m_disconnect, {})();
        }
    }

private:
    std::function<void()> m_disconnect;
};

} // namespace vorlane
