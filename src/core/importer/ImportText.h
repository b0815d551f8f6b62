// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// Small readings of text that several export formats share.
class ImportText {
public:
    // Tags written as one text, split at commas and semicolons, trimmed, empty ones dropped.
    static std::vector<std::string> tags(std::string_view text);
    // "true", "yes" or "1" in any case: how the exports write a set flag.
    static bool isTrue(std::string_view text);
    // The text split at `separator`, trimmed pieces, empty ones dropped ("A/B//C" gives A, B, C).
    static std::vector<std::string> path(std::string_view text, char separator);
    // "name: value" lines, as Bitwarden's CSV writes custom fields; a line without ": " is a
    // field without a name.
    static std::vector<std::pair<std::string, std::string>> nameValueLines(std::string_view text);
};

} // namespace vorlane
