// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <string>

namespace vorlane {

// The one way an instant is written for people and scripts: ISO 8601 in UTC, e.g.
// "2026-03-15T04:00:00Z", with ".123" milliseconds only when there are any, and the expanded
// "+012345" year form outside 0000-9999.
class IsoDate {
public:
    static std::string utc(Instant instant);
};

} // namespace vorlane
