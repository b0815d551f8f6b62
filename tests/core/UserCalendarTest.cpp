// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UserCalendar.h"

#include "ManualClock.h"
#include "TestTime.h"
#include "model/ServiceRecord.h"

#include <gtest/gtest.h>
#include <unicode/basictz.h>
#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/tztrans.h>

#include <memory>

namespace vorlane {
namespace {

using namespace std::chrono_literals;
using testing::ManualClock;
using testing::utc;

// New York: daylight saving starts 8 March 2026 (clocks 02:00 -> 03:00) and ends 1 November 2026.
constexpr std::string_view newYork = "America/New_York";

TEST(UserCalendarTest, CountsCalendarDaysNotTwentyFourHourBlocksAcrossDaylightSaving) {
    ManualClock clock;
    const UserCalendar calendar(clock, newYork);
    // Noon to noon over the spring change is one day though only 23 hours pass.
    EXPECT_EQ(calendar.daysBetween(utc(2026, 3, 7, 17), utc(2026, 3, 8, 16)), 1);
    // 24.5 hours over the autumn change end half an hour before noon: not yet a whole day.
    EXPECT_EQ(calendar.daysBetween(utc(2026, 10, 31, 16), utc(2026, 11, 1, 16, 30)), 0);
    EXPECT_EQ(calendar.daysBetween(utc(2026, 10, 31, 16), utc(2026, 11, 1, 17)), 1);
}

TEST(UserCalendarTest, TruncatesTowardZeroInBothDirections) {
    ManualClock clock;
    const UserCalendar calendar(clock, "UTC");
    EXPECT_EQ(calendar.daysBetween(utc(2026, 5, 1), utc(2026, 5, 2, 23, 59)), 1);
    EXPECT_EQ(calendar.daysBetween(utc(2026, 5, 3), utc(2026, 5, 1, 12)), -1);
    EXPECT_EQ(calendar.daysBetween(utc(2026, 5, 3), utc(2026, 5, 3)), 0);
    EXPECT_EQ(calendar.daysBetween(utc(2024, 1, 1), utc(2025, 1, 1)), 366);
}

TEST(UserCalendarTest, AddingAMonthClampsToTheEndOfTheShorterMonth) {
    ManualClock clock;
    const UserCalendar calendar(clock, newYork);
    // 31 January 10:00 local (15:00 UTC) plus a month is 28 February 10:00 local.
    EXPECT_EQ(calendar.adding(UserCalendar::Unit::month, 1, utc(2026, 1, 31, 15)),
              utc(2026, 2, 28, 15));
    EXPECT_EQ(calendar.adding(UserCalendar::Unit::month, 1, utc(2028, 1, 31, 15)),
              utc(2028, 2, 29, 15));
    EXPECT_EQ(calendar.adding(UserCalendar::Unit::year, 1, utc(2028, 2, 29, 15)),
              utc(2029, 2, 28, 15));
    // A day added across the spring change keeps the wall-clock time: 23 hours later in UTC.
    EXPECT_EQ(calendar.adding(UserCalendar::Unit::day, 1, utc(2026, 3, 7, 17)),
              utc(2026, 3, 8, 16));
    EXPECT_EQ(calendar.adding(UserCalendar::Unit::day, -30, utc(2026, 4, 30, 16)),
              utc(2026, 3, 31, 16));
}

TEST(UserCalendarTest, StartOfMonthIsLocalMidnightInThatDaysOwnOffset) {
    ManualClock clock;
    const UserCalendar calendar(clock, newYork);
    // 10 March is in summer time (UTC-4) but 1 March was not (UTC-5): midnight is 05:00 UTC.
    EXPECT_EQ(calendar.startOfMonth(utc(2026, 3, 10, 17)), utc(2026, 3, 1, 5));
    // And the other way round in November.
    EXPECT_EQ(calendar.startOfMonth(utc(2026, 11, 20, 17)), utc(2026, 11, 1, 4));
    // 02:00 UTC on 1 April is still 31 March in New York.
    EXPECT_EQ(calendar.startOfMonth(utc(2026, 4, 1, 2)), utc(2026, 3, 1, 5));
}

class ExpirationStateTest : public ::testing::Test {
protected:
    ExpirationState stateAt(Instant expiration) {
        ServiceRecord service = ServiceRecord::created(clock.now());
        service.expirationDate = expiration;
        return service.expirationState(calendar);
    }

    ManualClock clock{utc(2026, 6, 15, 14, 30)};
    UserCalendar calendar{clock, newYork};
};

TEST_F(ExpirationStateTest, ThresholdsAroundNow) {
    const Instant now = clock.now();
    EXPECT_EQ(stateAt(now - 10min), ExpirationState::expired);
    EXPECT_EQ(stateAt(now), ExpirationState::critical) << "not earlier than now: not yet expired";
    EXPECT_EQ(stateAt(now + 10min), ExpirationState::critical);
    EXPECT_EQ(stateAt(now + 47h + 59min), ExpirationState::critical);
    EXPECT_EQ(stateAt(now + 48h), ExpirationState::upcoming);
    EXPECT_EQ(stateAt(now + 7 * 24h + 1h), ExpirationState::upcoming);
    EXPECT_EQ(stateAt(now + 8 * 24h - 1min), ExpirationState::upcoming);
    EXPECT_EQ(stateAt(now + 8 * 24h), ExpirationState::soon);
    EXPECT_EQ(stateAt(now + 30 * 24h), ExpirationState::soon);
    EXPECT_EQ(stateAt(now + 31 * 24h - 1min), ExpirationState::soon);
    EXPECT_EQ(stateAt(now + 31 * 24h), ExpirationState::normal);

    ServiceRecord undated = ServiceRecord::created(now);
    EXPECT_EQ(undated.expirationState(calendar), ExpirationState::none);
    EXPECT_FALSE(undated.daysUntilExpiration(calendar).has_value());
}

TEST_F(ExpirationStateTest, ChangesWithTheTimeOfDayAcrossDaylightSaving) {
    // Noon EST on 1 March to noon EDT on 9 March: 8 calendar days, though only 7 days and 23
    // hours pass. A 24-hour division would say 7 (upcoming).
    clock.set(utc(2026, 3, 1, 17));
    EXPECT_EQ(stateAt(utc(2026, 3, 9, 16)), ExpirationState::soon);
    EXPECT_EQ(stateAt(utc(2026, 3, 9, 15, 59)), ExpirationState::upcoming);
    // The state moves with the time of day, not at midnight.
    clock.advance(1ms);
    EXPECT_EQ(stateAt(utc(2026, 3, 9, 16)), ExpirationState::upcoming);
}

TEST_F(ExpirationStateTest, DaysUntilExpirationGoesNegativeOncePassed) {
    ServiceRecord service = ServiceRecord::created(clock.now());
    service.expirationDate = clock.now() - 36h;
    EXPECT_EQ(service.daysUntilExpiration(calendar), -1);
    service.expirationDate = clock.now() + 36h;
    EXPECT_EQ(service.daysUntilExpiration(calendar), 1);
}

} // namespace
} // namespace vorlane

namespace vorlane {
namespace {

// Day counts must equal ICU's own calendar walk everywhere, above all close to a zone's
// transitions, where a day is 23, 25, 23.5 or (Samoa, December 2011) no hours long.
TEST(UserCalendarTest, DayCountsMatchTheCalendarWalkAroundEveryTransition) {
    using namespace std::chrono;
    testing::ManualClock clock;
    for (const char* zoneId : {"America/New_York", "Australia/Lord_Howe", "Pacific/Apia",
                               "Europe/London", "America/Santiago"}) {
        SCOPED_TRACE(zoneId);
        const UserCalendar calendar(clock, zoneId);
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Calendar> reference(icu::Calendar::createInstance(
            icu::TimeZone::createTimeZone(zoneId), icu::Locale::getUS(), status));
        ASSERT_TRUE(U_SUCCESS(status));
        const auto walk = [&](Instant from, Instant to) {
            UErrorCode walkStatus = U_ZERO_ERROR;
            reference->setTime(static_cast<UDate>(from.time_since_epoch().count()), walkStatus);
            return reference->fieldDifference(static_cast<UDate>(to.time_since_epoch().count()),
                                              UCAL_DATE, walkStatus);
        };

        std::unique_ptr<icu::BasicTimeZone> zone(
            dynamic_cast<icu::BasicTimeZone*>(icu::TimeZone::createTimeZone(zoneId)));
        ASSERT_NE(zone, nullptr);
        int transitions = 0;
        for (const int year : {2011, 2026}) {
            UDate cursor = static_cast<UDate>(testing::utc(year, 1, 1).time_since_epoch().count());
            const UDate end =
                static_cast<UDate>(testing::utc(year + 1, 1, 1).time_since_epoch().count());
            icu::TimeZoneTransition transition;
            while (zone->getNextTransition(cursor, false, transition) &&
                   transition.getTime() < end) {
                cursor = transition.getTime();
                ++transitions;
                const Instant at{milliseconds(static_cast<std::int64_t>(cursor))};
                for (Instant from = at - 26h; from <= at + 26h; from += 20min) {
                    for (const int days : {-3, -1, 0, 1, 2, 7}) {
                        for (const int minutes : {-61, -31, -1, 0, 1, 29, 59}) {
                            const Instant to = from + days * 24h + minutes * 1min;
                            ASSERT_EQ(calendar.daysBetween(from, to), walk(from, to))
                                << "from " << from.time_since_epoch().count() << " to "
                                << to.time_since_epoch().count();
                        }
                    }
                }
            }
        }
        EXPECT_GT(transitions, 0);
    }
}

} // namespace
} // namespace vorlane
