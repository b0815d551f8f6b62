// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// Every file the program writes that holds the user's data (export bundles, the reminder
// schedule) is written through here: readable and writable by the owner only (0600, whatever the
// umask), and atomically, so that a reader sees either the old file or the whole new one and a
// failed write leaves no half file behind.
class PrivateFile {
public:
    // Writes `bytes` to a new file beside `path` and renames it over `path` once it is on disk.
    // Nothing on success; otherwise the reason ("Permission denied"), and `path` is as it was.
    static std::optional<std::string> write(const std::string& path, std::string_view bytes);
};

} // namespace vorlane
