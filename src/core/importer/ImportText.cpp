// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportText.h"

#include "importer/CsvTable.h"
#include "util/TagText.h"
#include "util/Whitespace.h"

namespace vorlane {

std::vector<std::string> ImportText::tags(std::string_view text) {
    std::string commas(text);
    for (char& c : commas) {
        if (c == ';') {
            c = ',';
        }
    }
    return splitTags(commas);
}

bool ImportText::isTrue(std::string_view text) {
    const std::string value = CsvTable::normalized(text);
    return value == "true" || value == "yes" || value == "1";
}

std::vector<std::string> ImportText::path(std::string_view text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        const std::string_view part = trimmed(text.substr(start, end - start));
        if (!part.empty()) {
            parts.emplace_back(part);
        }
        start = end + 1;
    }
    return parts;
}

std::vector<std::pair<std::string, std::string>> ImportText::nameValueLines(std::string_view text) {
    std::vector<std::pair<std::string, std::string>> fields;
    for (const std::string& line : path(text, '\n')) {
        const std::size_t colon = line.find(": ");
        if (colon == std::string::npos) {
            fields.emplace_back(std::string(), line);
        } else {
            fields.emplace_back(std::string(trimmed(line.substr(0, colon))),
                                std::string(trimmed(line.substr(colon + 2))));
        }
    }
    return fields;
}

} // namespace vorlane
