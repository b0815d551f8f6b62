// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vorlane {

// Files the commands read secrets and sealed files from: a regular file, a pipe or a process
// substitution like <(pass show client). Read with a bound, so that a huge or endless file
// (/dev/zero) is refused instead of filling memory, and without leaving copies of a secret in
// freed memory.
class SecretFile {
public:
    // What a file may hold at most, and how its refusal is worded.
    struct Limit {
        std::size_t bytes;
        const char* refusal;
    };
    static constexpr Limit secretLimit{64 * 1024,
                                       "it is larger than 64 KiB, which no password or key is"};

    // All of the file into `contents`, up to `limit`. Nothing on success, else the reason.
    static std::optional<std::string> readWhole(const std::string& path, std::string& contents,
                                                const Limit& limit);

    // The password a file gives: its first line, without the line break (LF or CRLF) that `echo`
    // or an editor ends it with; spaces are kept, since they may belong to it. Nothing on
    // success, else the reason. The caller wipes `password`.
    static std::optional<std::string> readPassword(const std::string& path, std::string& password);

    // Drops one trailing line break (LF or CRLF), wiping it.
    static void dropLineBreak(std::string& text);
};

} // namespace vorlane
