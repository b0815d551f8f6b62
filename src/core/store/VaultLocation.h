// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace vorlane {

// Where the vault file lives: the path given on the command line, else "vault.sqlite" in
// $VORLANE_DATA_DIR, else in $XDG_DATA_HOME/vorlane, else in ~/.local/share/vorlane.
class VaultLocation {
public:
    static std::string resolve(const std::optional<std::string>& explicitPath = std::nullopt);
    // The folder of the default vault (without a path given): Vorlane's own, kept 0700.
    static std::string dataFolder();
};

} // namespace vorlane
