// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace vorlane {

// A point in time, UTC, to the millisecond: what the vault stores for every date.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

} // namespace vorlane
