// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CurrencyFormat.h"

#include "util/UserLocale.h"

#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/unistr.h>

#include <optional>
#include <string>
#include <unordered_map>

namespace vorlane {

namespace {

// Building an ICU formatter costs some 30 µs, formatting with one about 1 µs, and an expense
// screen writes thousands of amounts: keep one formatter per locale and thread (a formatter is
// immutable, the map is not, hence per thread rather than shared).
const icu::number::LocalizedNumberFormatter* formatterFor(const icu::Locale& locale) {
    thread_local std::unordered_map<std::string,
                                    std::optional<icu::number::LocalizedNumberFormatter>>
        formatters;
    auto [entry, inserted] = formatters.try_emplace(locale.getName());
    if (inserted) {
        UErrorCode status = U_ZERO_ERROR;
        const icu::CurrencyUnit usd(u"USD", status);
        if (U_SUCCESS(status)) {
            entry->second = icu::number::NumberFormatter::withLocale(locale).unit(usd).precision(
                icu::number::Precision::minMaxFraction(0, 2));
        }
    }
    return entry->second ? &*entry->second : nullptr;
}

} // namespace

std::string currencyFormatted(const Decimal& amount, std::string_view localeId) {
    const std::string fallback = "$0";
    const icu::number::LocalizedNumberFormatter* formatter = formatterFor(userLocale(localeId));
    if (formatter == nullptr) {
        return fallback;
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::string exact = amount.toString();
    const icu::number::FormattedNumber formatted = formatter->formatDecimal(
        icu::StringPiece(exact.data(), static_cast<int32_t>(exact.size())), status);
    if (U_FAILURE(status)) {
        return fallback;
    }
    const icu::UnicodeString text = formatted.toString(status);
    if (U_FAILURE(status) || text.isEmpty()) {
        return fallback;
    }
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

} // namespace vorlane
