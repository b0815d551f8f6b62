// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <openssl/crypto.h>

#include <string>

namespace vorlane {

// Wipes a secret's bytes when it goes out of scope, on every return path.
class WipeOnExit {
public:
    explicit WipeOnExit(std::string& text)
        : m_text(text) {}
    WipeOnExit(const WipeOnExit&) = delete;
    WipeOnExit& operator=(const WipeOnExit&) = delete;
    ~WipeOnExit() { OPENSSL_cleanse(m_text.data(), m_text.size()); }

private:
    std::string& m_text;
};

} // namespace vorlane
