// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"
#include "util/Result.h"

#include <string>
#include <string_view>

namespace vorlane {

// What a one-time code is made from: the shared key and the parameters of RFC 6238, read from
// what a service's setup page gives out, either an "otpauth://totp/LABEL?secret=...&..." URI
// (also the text of its QR code) or the bare base32 secret, which means SHA-1, 6 digits, 30 s.
// Only the values every authenticator app agrees on are accepted (SHA-1/256/512, 6 or 8 digits,
// a 30 or 60 second period), so that a code shown here is the code the service expects.
struct TotpSecret {
    enum class Algorithm { sha1, sha256, sha512 };

    // Why a text is refused, shown beside the field as it stands.
    static constexpr std::string_view invalidMessage = "Not a valid one-time code secret";
    // Fewer key bits than this (16 base32 characters) is a word typed by mistake, not a key.
    static constexpr std::size_t minimumKeyBytes = 10;

    Bytes key;
    Algorithm algorithm = Algorithm::sha1;
    int digits = 6;
    int periodSeconds = 30;
    std::string issuer;  // from the URI; empty for a bare secret
    std::string account; // the label's account part; empty for a bare secret

    // Surrounding whitespace is ignored. The error is `invalidMessage`.
    static Result<TotpSecret, std::string> parse(std::string_view text);
    static bool isValid(std::string_view text) { return parse(text).ok(); }
};

} // namespace vorlane
