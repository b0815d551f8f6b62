// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vorlane {

// Argon2id (RFC 9106, version 0x13) through libargon2: the memory-hard derivation that turns a
// backup password into its key, so that guessing passwords for a stolen file costs memory as
// well as time. The secret and associated data inputs are there for the RFC's own vector.
class Argon2id {
public:
    struct Cost {
        std::uint32_t memoryKiB = 0;
        std::uint32_t passes = 0;
        std::uint32_t lanes = 0;
    };

    // `length` bytes (at least 4) derived from `password` and `salt` (at least 8 bytes); the
    // lanes are computed on as many threads. Nothing when libargon2 refuses the inputs (memory
    // below 8 KiB a lane, no pass, no lane) or cannot allocate its memory. The caller owns the
    // result and wipes it.
    static std::optional<Bytes> derive(std::span<const std::uint8_t> password,
                                       std::span<const std::uint8_t> salt, const Cost& cost,
                                       std::size_t length,
                                       std::span<const std::uint8_t> secret = {},
                                       std::span<const std::uint8_t> associatedData = {});
};

} // namespace vorlane
