// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "totp/TotpSecret.h"
#include "util/Instant.h"

#include <cstdint>
#include <string>

namespace vorlane {

// Time-based one-time codes (RFC 6238 over RFC 4226's HOTP): the HMAC of the number of periods
// since 1970, dynamically truncated to the secret's number of digits.
class Totp {
public:
    struct Code {
        std::string digits; // with leading zeros, "012345"
        int validFor = 0;   // whole seconds left in its period, 1 to the period
    };

    // The code at `now`. `now` before 1970 counts as 1970.
    static Code at(const TotpSecret& secret, Instant now);
    // The code for one period counter (HOTP), for the known-answer vectors.
    static std::string forCounter(const TotpSecret& secret, std::uint64_t counter);
    // "123 456" / "1234 5678": two groups, so that it is read and typed in halves.
    static std::string grouped(const std::string& digits);
};

} // namespace vorlane
