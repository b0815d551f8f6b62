// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/SystemClock.h"

namespace vorlane {

Instant SystemClock::now() const {
    return std::chrono::time_point_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now());
}

} // namespace vorlane
