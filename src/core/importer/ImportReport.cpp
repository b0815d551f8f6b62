// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/ImportReport.h"

namespace vorlane {

namespace {

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace

std::string ImportReport::summary() const {
    const std::string would = isForecast ? " would be" : "";
    std::string text = counted(created, "service", "services") + would + " imported into " +
                       counted(organizations, "organization", "organizations") + ", " +
                       counted(duplicatesSkipped, "duplicate", "duplicates") + would +
                       " skipped, " + std::to_string(rejected.size()) + " rejected";
    if (cancelled) {
        text += "; cancelled, " + counted(notReached, "entry", "entries") + " not imported";
    } else if (!failure.empty()) {
        text += "; stopped, " + counted(notReached, "entry", "entries") + " not imported";
    }
    return text;
}

} // namespace vorlane
