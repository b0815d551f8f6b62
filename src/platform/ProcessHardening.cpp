// SPDX-License-Identifier: GPL-3.0-or-later
#include "ProcessHardening.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace vorlane {

bool ProcessHardening::disableCoreDumps() {
    const bool notDumpable = prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0;
    const rlimit noCore{0, 0};
    const bool noCoreLimit = setrlimit(RLIMIT_CORE, &noCore) == 0;
    return notDumpable && noCoreLimit;
}

} // namespace vorlane
