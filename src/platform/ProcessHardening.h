// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace vorlane {

// Process-wide protections for a program that holds secrets in memory.
class ProcessHardening {
public:
    // Turns core dumps off (not dumpable, core size limit 0), so that no password typed or read
    // by this process can end up in a dump file. Returns false when the kernel refused either.
    static bool disableCoreDumps();
};

} // namespace vorlane
