// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace vorlane {

// One heap buffer for a typed password. Its bytes are overwritten (in a way the compiler may not
// drop) when it is wiped, reassigned or destroyed, and moving hands the same storage over instead
// of copying it, so the secret never exists in more places than the code asks for. Never log or
// print its contents. Not copyable.
class SecretBuffer {
public:
    SecretBuffer() = default;
    explicit SecretBuffer(std::string_view text);
    ~SecretBuffer();

    SecretBuffer(SecretBuffer&& other) noexcept;
    SecretBuffer& operator=(SecretBuffer&& other) noexcept;
    SecretBuffer(const SecretBuffer&) = delete;
    SecretBuffer& operator=(const SecretBuffer&) = delete;

    std::string_view view() const { return {m_data.get(), m_size}; }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    // Overwrites the bytes and leaves the buffer empty.
    void wipe();

    // Overwrites `size` bytes at `data`; for the copies that other code makes of a secret.
    static void wipe(void* data, std::size_t size);

private:
    std::unique_ptr<char[]> m_data;
    std::size_t m_size = 0;
};

} // namespace vorlane
