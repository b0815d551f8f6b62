// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Clock.h"

namespace vorlane {

// The real wall clock. Stateless; safe from any thread.
class SystemClock final : public Clock {
public:
    Instant now() const override;
};

} // namespace vorlane
