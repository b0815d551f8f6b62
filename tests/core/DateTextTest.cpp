// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DateText.h"

#include "ManualClock.h"
#include "TestTime.h"
#include "util/UserCalendar.h"

#include <gtest/gtest.h>

namespace vorlane::testing {
namespace {

// 03:00 UTC on 5 March is still the evening of 4 March in New York: the day shown must be the
// user's, not UTC's.
TEST(DateTextTest, WritesTheDayOfTheUsersZoneInTheLocalesOwnOrder) {
    ManualClock clock;
    UserCalendar newYork(clock, "America/New_York");
    const Instant instant = utc(2026, 3, 5, 3, 0);
    EXPECT_EQ(DateText::format(instant, DateText::Style::monthDay, newYork, "en_US"), "Mar 4");
    EXPECT_EQ(DateText::format(instant, DateText::Style::abbreviated, newYork, "en_US"),
              "Mar 4, 2026");
    EXPECT_EQ(DateText::format(instant, DateText::Style::abbreviated, newYork, "de_DE"),
              "04.03.2026");

    UserCalendar tokyo(clock, "Asia/Tokyo");
    EXPECT_EQ(DateText::format(instant, DateText::Style::monthDay, tokyo, "en_US"), "Mar 5");
}

} // namespace
} // namespace vorlane::testing
