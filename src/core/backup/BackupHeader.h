// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "backup/BackupFile.h"
#include "crypto/AesGcm.h"
#include "util/Result.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vorlane {

// The fixed 66 bytes at the start of a backup file, all numbers little-endian:
//
//   offset size  field
//        0   14  "VORLANE-BACKUP" (ASCII)
//       14    2  format version (1)
//       16    1  key derivation: 1 = Argon2id, version 0x13
//       17    1  compression of the body: 1 = zlib (RFC 1950)
//       18    4  Argon2id memory in KiB
//       22    4  Argon2id passes
//       26    4  Argon2id lanes
//       30    8  length of the encrypted body in bytes
//       38   16  salt of the key derivation
//       54   12  AES-256-GCM nonce
//
// The encrypted body and its 16-byte tag follow. The header is the cipher's additional
// authenticated data; and since the nonce comes last, the nonce, body and tag together are
// AesGcm's combined form as it stands in the file. The body's length is in the header so that a
// file cut short is told from a damaged one.
struct BackupHeader {
    static constexpr std::size_t size = 66;
    static constexpr std::size_t saltSize = 16;
    static constexpr std::size_t nonceOffset = size - AesGcm::nonceSize;
    static constexpr std::string_view magic = "VORLANE-BACKUP";

    // What the user reads when the file is not one to open.
    static constexpr std::string_view notABackupText = "This file is not a Vorlane backup.";
    static constexpr std::string_view incompleteText = "The backup file is incomplete.";
    static constexpr std::string_view damagedText =
        "The password is wrong or the backup is damaged.";
    static std::string newerFormatText(unsigned version);

    // The largest cost a file may ask for. A hostile file could otherwise make the key derivation
    // take all memory or run for hours before the password is even checked; these stay far above
    // what any version of ours asks (the default is 64 MiB, 3 passes, 2 lanes).
    static constexpr std::uint32_t maximumMemoryKiB = 4u * 1024 * 1024; // 4 GiB
    static constexpr std::uint32_t maximumPasses = 64;
    static constexpr std::uint32_t maximumLanes = 64;
    // Within those limits, and at least one pass, one lane and the 8 KiB a lane Argon2id needs.
    static bool acceptable(const BackupKdfParameters& parameters);

    BackupKdfParameters parameters;
    std::uint64_t bodyLength = 0;
    std::array<std::uint8_t, saltSize> salt{};
    AesGcm::Nonce nonce{};

    // The header's bytes as they start a file of the current format.
    std::string bytes() const;

    // The header of `file` (the whole file's bytes), checked against its length; otherwise one of
    // the texts above: not a backup (another format, or nothing at all), a newer format, cut
    // short (within the header or the body), damaged (an unknown algorithm, a cost beyond the
    // limits, bytes after the end).
    static Result<BackupHeader, std::string> read(std::string_view file);
};

} // namespace vorlane
