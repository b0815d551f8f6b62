// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

class PreferenceStore;

// When the last backup into the backup folder was tried and how it went, kept in the preference
// store so that Settings → Backups still says it after a restart. A plain value.
struct LastBackup {
    struct Key {
        static constexpr std::string_view at = "backupLastAt"; // milliseconds since 1970, as text
        static constexpr std::string_view error = "backupLastError"; // empty after a success
        static constexpr std::string_view succeededAt = "backupLastSucceededAt"; // as `at`
    };

    Instant at;
    std::optional<std::string> error; // nothing: it succeeded
    // The last one that succeeded: `at` itself after a success, an earlier time (or nothing)
    // after a failure.
    std::optional<Instant> succeededAt;

    // Nothing when no backup was ever tried (or the stored time is not a number).
    static std::optional<LastBackup> read(const PreferenceStore& preferences);
    void write(PreferenceStore& preferences) const;

    friend bool operator==(const LastBackup&, const LastBackup&) = default;
};

} // namespace vorlane
