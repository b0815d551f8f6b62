// SPDX-License-Identifier: GPL-3.0-or-later
#include "ProcessHardening.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <cstdlib>

namespace vorlane {
namespace {

void hardenAndCheck() {
    if (!ProcessHardening::disableCoreDumps()) {
        std::exit(2);
    }
    rlimit limit{};
    if (getrlimit(RLIMIT_CORE, &limit) != 0 || limit.rlim_cur != 0 || limit.rlim_max != 0) {
        std::exit(3);
    }
    if (prctl(PR_GET_DUMPABLE, 0, 0, 0, 0) != 0) {
        std::exit(4);
    }
    std::exit(0);
}

// In a child process, so that the test run itself keeps its ability to dump core.
TEST(ProcessHardeningDeathTest, CoreDumpsAreOffAfterHardening) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(hardenAndCheck(), ::testing::ExitedWithCode(0), "");
}

TEST(ProcessHardeningDeathTest, ChildStartsDumpableSoTheCheckAboveMeansSomething) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(prctl(PR_GET_DUMPABLE, 0, 0, 0, 0) == 1 ? 0 : 1),
                ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace vorlane
