// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/TagText.h"

namespace vorlane {

std::vector<std::string> splitTags(std::string_view text) {
    std::vector<std::string> tags;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(',', start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        if (const std::string_view tag = trimmed(text.substr(start, end - start)); !tag.empty()) {
            tags.emplace_back(tag);
        }
        start = end + 1;
    }
    return tags;
}

std::string joinTags(const std::vector<std::string>& tags) {
    std::string text;
    for (std::size_t i = 0; i < tags.size(); ++i) {
        text += i == 0 ? "" : ", ";
        text += tags[i];
    }
    return text;
}

} // namespace vorlane
