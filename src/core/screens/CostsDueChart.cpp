// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/CostsDueChart.h"

#include "model/ServiceRecord.h"
#include "store/DataStore.h"
#include "util/CurrencyFormat.h"
#include "util/UserCalendar.h"

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace vorlane {

namespace {

// The month of `instant` in the user's zone and locale, written after an ICU skeleton ("MMM" for
// "Mar", "MMMMy" for "March 2026"); empty when ICU cannot.
class MonthWriter {
public:
    MonthWriter(const UserCalendar& calendar, const char16_t* skeleton) {
        UErrorCode status = U_ZERO_ERROR;
        m_format.reset(icu::DateFormat::createInstanceForSkeleton(
            icu::UnicodeString(skeleton), icu::Locale::getDefault(), status));
        if (U_FAILURE(status)) {
            m_format.reset();
            return;
        }
        const std::string zone = calendar.timeZoneId();
        m_format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)));
    }

    std::string write(Instant instant) const {
        if (!m_format) {
            return {};
        }
        icu::UnicodeString text;
        m_format->format(static_cast<UDate>(instant.time_since_epoch().count()), text);
        std::string utf8;
        text.toUTF8String(utf8);
        return utf8;
    }

private:
    std::unique_ptr<icu::DateFormat> m_format;
};

} // namespace

CostsDueChart::CostsDueChart(const DataStore& store, const UserCalendar& calendar) {
    // Where each month of the window begins, and where the window ends.
    std::array<Instant, months + 1> starts{};
    const std::optional<Instant> first = calendar.startOfMonth(calendar.now());
    if (!first) {
        return;
    }
    for (int month = 0; month <= months; ++month) {
        const std::optional<Instant> start =
            calendar.adding(UserCalendar::Unit::month, month, *first);
        if (!start) {
            return;
        }
        starts[static_cast<std::size_t>(month)] = *start;
    }

    // Charges summed by the month of the first renewal and the step between renewals, and only
    // then spread along the cycle: a dozen additions per group instead of one per service. A step
    // as long as the window means the charge falls in it once.
    std::map<std::pair<int, int>, Decimal> byMonthAndStep;
    for (const ServiceRecord* service : store.fetchExpiringBetween(starts.front(), starts.back())) {
        const Decimal charge = store.chargePerPeriod(*service);
        if (charge.isZero() || charge.isNegative()) {
            continue;
        }
        // Calendar arithmetic keeps the month exact (31 January plus a month is still February),
        // so every later renewal lands a whole step of months further on.
        const int month = static_cast<int>(
            std::upper_bound(starts.begin(), starts.end(), *service->expirationDate) -
            starts.begin() - 1);
        const BillingCycle cycle = service->billingCycle();
        const bool recurs = cycle != BillingCycle::oneTime && cycle != BillingCycle::none;
        byMonthAndStep[{month, recurs ? cycle.renewalMonths() : months}] += charge;
    }
    std::array<Decimal, months> due{};
    for (const auto& [key, charge] : byMonthAndStep) {
        const auto [firstMonth, step] = key;
        for (int month = firstMonth; month < months; month += step) {
            due[static_cast<std::size_t>(month)] += charge;
        }
    }
    const Decimal largest = *std::max_element(due.begin(), due.end());
    m_hasCostsDue = largest > Decimal();
    const MonthWriter shortMonth(calendar, u"MMM");
    const MonthWriter longMonth(calendar, u"MMMMy");
    m_bars.reserve(due.size());
    for (std::size_t month = 0; month < due.size(); ++month) {
        const std::string amount = currencyFormatted(due[month]);
        m_bars.push_back({shortMonth.write(starts[month]), amount,
                          ChartBar::fractionOf(due[month], largest), Palette::Color::blue,
                          longMonth.write(starts[month]) + ": " + amount + " due"});
    }
}

} // namespace vorlane
