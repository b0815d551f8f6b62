// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

namespace vorlane {

// Port: where "now" comes from. Every rule evaluated at the current instant asks a Clock, never
// the system clock directly, so that tests can hold time still or move it.
class Clock {
public:
    virtual ~Clock() = default;
    virtual Instant now() const = 0;
};

} // namespace vorlane
