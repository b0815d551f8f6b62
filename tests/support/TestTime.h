// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <chrono>

namespace vorlane::testing {

// A UTC instant from calendar fields, for writing dates in tests.
inline Instant utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0) {
    using namespace std::chrono;
    return time_point_cast<milliseconds>(sys_days(std::chrono::year(year) / month / day) +
                                         hours(hour) + minutes(minute));
}

} // namespace vorlane::testing
