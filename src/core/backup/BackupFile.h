// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupContents.h"
#include "util/Result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

class UserCalendar;

// The Argon2id cost of turning a backup password into its key. Stored in every file's header, so
// that a later version can raise it and still read the files made before.
struct BackupKdfParameters {
    std::uint32_t memoryKiB = 64 * 1024;
    std::uint32_t passes = 3;
    std::uint32_t lanes = 2;
};

// The `.vorlanebackup` file: a small versioned header (format name, version, the key
// derivation's algorithm and parameters, salt, nonce) followed by the body, which is the
// contents as JSON, compressed, then sealed with AES-256-GCM under a key derived from the
// password with Argon2id; the header is the cipher's additional authenticated data, so a changed
// header byte is found like a changed body byte. The README describes the layout byte by byte.
//
// Pure functions of their arguments: safe on any thread (the key derivation takes a moment and
// 64 MiB, so windows run `seal` and `open` off the main thread).
class BackupFile {
public:
    static constexpr int formatVersion = 1;
    static constexpr std::size_t minimumPasswordLength = 12;

    // "Vorlane-Backup-YYYY-MM-DD.vorlanebackup", the date being `createdAt`'s day for the user.
    static std::string fileName(Instant createdAt, const UserCalendar& calendar);

    // The bytes of a whole backup file holding `contents`, sealed with `password`. Empty (never
    // a file) when the secure random source fails, the key derivation cannot have its memory, or
    // `parameters` are beyond what `open` accepts.
    static std::string seal(const BackupContents& contents, std::string_view password,
                            const BackupKdfParameters& parameters = {});

    // Looks at the header only, before a password is asked for. Nothing when the bytes start a
    // backup this version can open; otherwise what is wrong, as the user reads it:
    // "This file is not a Vorlane backup.", "This backup was made by a newer version of Vorlane
    // (format 2).", "The backup file is incomplete." (cut short).
    static std::optional<std::string> checkHeader(std::string_view bytes);

    // The contents, or what is wrong: `checkHeader`'s reasons, and "The password is wrong or the
    // backup is damaged." for a wrong password or any changed byte (the two cannot be told
    // apart, by design).
    static Result<BackupContents, std::string> open(std::string_view bytes,
                                                    std::string_view password);

    // `seal` written to `path` through PrivateFile (atomic, 0600). Nothing on success, otherwise
    // the reason, and no file (or the earlier one, untouched) is at `path`.
    static std::optional<std::string> write(const std::string& path, const BackupContents& contents,
                                            std::string_view password,
                                            const BackupKdfParameters& parameters = {});
    // Reads the whole file into `bytes`. Nothing on success, otherwise the reason it cannot be
    // read ("No such file or directory", "Not a regular file" for a device or a pipe), and
    // `bytes` is empty. (Not a Result: its value and
    // error would both be strings, which it cannot tell apart.)
    static std::optional<std::string> read(const std::string& path, std::string& bytes);
};

} // namespace vorlane
