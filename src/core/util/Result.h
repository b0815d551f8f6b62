// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>
#include <variant>

namespace vorlane {

// Either a value or the reason there is none. Errors in the core travel as values like this,
// never as exceptions, so that every caller has to look at them. `T` and `E` must differ.
template <typename T, typename E> class Result {
public:
    Result(T value)
        : m_state(std::in_place_index<0>, std::move(value)) {}
    Result(E error)
        : m_state(std::in_place_index<1>, std::move(error)) {}

    bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    // Only when ok().
    const T& value() const& { return std::get<0>(m_state); }
    T& value() & { return std::get<0>(m_state); }
    T&& value() && { return std::get<0>(std::move(m_state)); }
    // Only when !ok().
    const E& error() const { return std::get<1>(m_state); }

private:
    std::variant<T, E> m_state;
};

} // namespace vorlane
