// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/VaultLocation.h"

#include <cstdlib>

namespace vorlane {

namespace {

std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);
    if (!value || *value == '\0') {
        return std::nullopt;
    }
    return std::string(value);
}

} // namespace

std::string VaultLocation::resolve(const std::optional<std::string>& explicitPath) {
    if (explicitPath && !explicitPath->empty()) {
        return *explicitPath;
    }
    return dataFolder() + "/vault.sqlite";
}

std::string VaultLocation::dataFolder() {
    if (const auto folder = environment("VORLANE_DATA_DIR")) {
        return *folder;
    }
    // The XDG base directory rules: a relative XDG_DATA_HOME is invalid and is ignored.
    if (const auto data = environment("XDG_DATA_HOME"); data && data->front() == '/') {
        return *data + "/vorlane";
    }
    return environment("HOME").value_or(".") + "/.local/share/vorlane";
}

} // namespace vorlane
