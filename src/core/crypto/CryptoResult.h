#pragma once

#include "crypto/CryptoError.h"

#include <utility>
#include <variant>

namespace vorlane {

// Either a value or the reason there is none. Errors of the crypto code travel as values, never
// as exceptions, so that every caller has to look at them. `E` is CryptoError except where a
// failure needs its own sentence (a malformed bundle file).
template <typename T, typename E = CryptoError> class CryptoResult {
public:
    CryptoResult(T value)
        : m_state(std::in_place_index<0>, std::move(value)) {}
    CryptoResult(E error)
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
