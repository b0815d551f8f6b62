// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

// What a screen shows instead of an empty list: an icon, a title, a message and, when the screen
// offers one, the title of the action button (empty when there is none).
struct EmptyState {
    std::string_view icon;
    std::string title;
    std::string message;
    std::string actionTitle;

    friend bool operator==(const EmptyState&, const EmptyState&) = default;
};

} // namespace vorlane
