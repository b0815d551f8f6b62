// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CurrencyFormat.h"

#include "util/UserLocale.h"

#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/ucurr.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace vorlane {

namespace {

// The code as three letters in one word, so that every amount written reads it without a lock.
std::uint32_t packed(std::string_view code) {
    std::uint32_t word = 0;
    for (const char letter : code) {
        word = (word << 8) | static_cast<unsigned char>(letter);
    }
    return word;
}

std::string unpacked(std::uint32_t word) {
    return {static_cast<char>(word >> 16), static_cast<char>((word >> 8) & 0xff),
            static_cast<char>(word & 0xff)};
}

std::atomic<std::uint32_t>& currentCurrency() {
    static std::atomic<std::uint32_t> code{packed(defaultCurrency)};
    return code;
}

// Current ISO 4217 codes only: a withdrawn currency or a code ICU merely tolerates is refused.
std::vector<std::string> isoCodes() {
    std::vector<std::string> codes;
    UErrorCode status = U_ZERO_ERROR;
    UEnumeration* all = ucurr_openISOCurrencies(UCURR_COMMON | UCURR_NON_DEPRECATED, &status);
    if (U_FAILURE(status)) {
        return codes;
    }
    while (const char* code = uenum_next(all, nullptr, &status)) {
        if (U_FAILURE(status)) {
            break;
        }
        codes.emplace_back(code);
    }
    uenum_close(all);
    std::sort(codes.begin(), codes.end());
    return codes;
}

const std::vector<std::string>& knownCodes() {
    static const std::vector<std::string> codes = isoCodes();
    return codes;
}

// Building an ICU formatter costs some 30 µs, formatting with one about 1 µs, and an expense
// screen writes thousands of amounts: keep one formatter per locale, currency and precision and
// thread (a formatter is immutable, the map is not, hence per thread rather than shared).
const icu::number::LocalizedNumberFormatter*
formatterFor(const icu::Locale& locale, const std::string& currency, CurrencyDigits digits) {
    thread_local std::unordered_map<std::string,
                                    std::optional<icu::number::LocalizedNumberFormatter>>
        formatters;
    const std::string key = std::string(locale.getName()) + '/' + currency +
                            (digits == CurrencyDigits::all ? "/all" : "/upTo");
    auto [entry, inserted] = formatters.try_emplace(key);
    if (inserted) {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString code = icu::UnicodeString::fromUTF8(currency);
        const UChar* iso = code.getTerminatedBuffer();
        const icu::CurrencyUnit unit(iso, status);
        const int32_t places = ucurr_getDefaultFractionDigits(iso, &status);
        if (U_SUCCESS(status)) {
            entry->second = icu::number::NumberFormatter::withLocale(locale).unit(unit).precision(
                digits == CurrencyDigits::all ? icu::number::Precision::fixedFraction(places)
                                              : icu::number::Precision::minMaxFraction(0, places));
        }
    }
    return entry->second ? &*entry->second : nullptr;
}

} // namespace

std::string currencyFormatted(const Decimal& amount, std::string_view localeId,
                              CurrencyDigits digits) {
    const std::string fallback = "0";
    const icu::number::LocalizedNumberFormatter* formatter =
        formatterFor(userLocale(localeId), vaultCurrency(), digits);
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

bool setVaultCurrency(std::string_view code) {
    const std::vector<std::string>& codes = knownCodes();
    if (!std::binary_search(codes.begin(), codes.end(), code)) {
        return false;
    }
    currentCurrency().store(packed(code), std::memory_order_relaxed);
    return true;
}

std::string vaultCurrency() {
    return unpacked(currentCurrency().load(std::memory_order_relaxed));
}

std::vector<CurrencyChoice> currencyChoices(std::string_view localeId) {
    const icu::Locale locale = userLocale(localeId);
    std::vector<CurrencyChoice> choices;
    for (const std::string& code : knownCodes()) {
        icu::UnicodeString iso = icu::UnicodeString::fromUTF8(code);
        UErrorCode status = U_ZERO_ERROR;
        UBool isChoiceFormat = false;
        int32_t length = 0;
        const UChar* name = ucurr_getName(iso.getTerminatedBuffer(), locale.getName(),
                                          UCURR_LONG_NAME, &isChoiceFormat, &length, &status);
        std::string utf8;
        if (U_SUCCESS(status) && name) {
            icu::UnicodeString(name, length).toUTF8String(utf8);
        }
        choices.push_back({code, utf8.empty() ? code : utf8});
    }
    return choices;
}

} // namespace vorlane
