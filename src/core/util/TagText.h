// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Whitespace.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// Tags are typed as one comma-separated text. Splitting cuts at every comma, trims the
// whitespace around each piece (see Whitespace.h) and drops the empty ones, keeping the order:
// " web, , client ,,vip" gives web, client, vip. Joining writes them back with ", ".
std::vector<std::string> splitTags(std::string_view text);
std::string joinTags(const std::vector<std::string>& tags);

} // namespace vorlane
