// SPDX-License-Identifier: GPL-3.0-or-later
#include "SecretBuffer.h"

#include <string.h>

#include <cstring>
#include <utility>

namespace vorlane {

SecretBuffer::SecretBuffer(std::string_view text)
    : m_data(std::make_unique<char[]>(text.size() + 1))
    , m_size(text.size()) {
    std::memcpy(m_data.get(), text.data(), text.size());
}

SecretBuffer::~SecretBuffer() {
    wipe();
}

SecretBuffer::SecretBuffer(SecretBuffer&& other) noexcept
    : m_data(std::move(other.m_data))
    , m_size(std::exchange(other.m_size, 0)) {}

SecretBuffer& SecretBuffer::operator=(SecretBuffer&& other) noexcept {
    if (this != &other) {
        wipe();
        m_data = std::move(other.m_data);
        m_size = std::exchange(other.m_size, 0);
    }
    return *this;
}

void SecretBuffer::wipe() {
    if (m_data) {
        wipe(m_data.get(), m_size);
    }
    m_data.reset();
    m_size = 0;
}

void SecretBuffer::wipe(void* data, std::size_t size) {
    // explicit_bzero, unlike memset, survives dead-store elimination.
    explicit_bzero(data, size);
}

} // namespace vorlane
