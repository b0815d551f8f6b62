// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <memory>

namespace vorlane::testing {

// Dates in pasted text are read in the user's locale and zone. Tests read them as a user in
// New York with an American locale would, whatever the machine says, and put things back after.
// New York has daylight saving, so midnight is 04:00 or 05:00 UTC depending on the date.
class PinnedLocaleTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_locale = icu::Locale::getDefault();
        m_zone.reset(icu::TimeZone::createDefault());
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(icu::Locale("en_US"), status);
        ASSERT_TRUE(U_SUCCESS(status));
        icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("America/New_York"));
    }

    void TearDown() override {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(m_locale, status);
        icu::TimeZone::adoptDefault(m_zone.release());
    }

private:
    icu::Locale m_locale;
    std::unique_ptr<icu::TimeZone> m_zone;
};

} // namespace vorlane::testing
