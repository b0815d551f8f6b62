// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// Tags are typed as one comma-separated text. Splitting cuts at every comma, trims the spaces,
// tabs and line breaks around each piece and drops the empty ones, keeping the order:
// " web, , client ,,vip" gives web, client, vip. Joining writes them back with ", ".
std::vector<std::string> splitTags(std::string_view text);
std::string joinTags(const std::vector<std::string>& tags);

// `text` without the whitespace (spaces, tabs, line breaks) at either end.
std::string_view trimmed(std::string_view text);

} // namespace vorlane
