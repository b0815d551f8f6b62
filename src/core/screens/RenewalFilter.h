// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace vorlane {

// Which services the renewal screen lists; fixed when the screen is made.
enum class RenewalFilter {
    expiringSoon, // expiring within the next 30 days, soonest first
    expired,      // already expired, oldest first
    all,          // every dated service that is not archived, by expiration date
};

// The screen's header title: "Expiring Soon", "Expired", "All Renewals".
std::string_view renewalFilterTitle(RenewalFilter filter);

} // namespace vorlane
