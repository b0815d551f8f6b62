#include "util/CurrencyFormat.h"

#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/unistr.h>

namespace vorlane {

std::string currencyFormatted(const Decimal& amount, std::string_view localeId) {
    const std::string fallback = "$0";
    UErrorCode status = U_ZERO_ERROR;
    const icu::CurrencyUnit usd(u"USD", status);
    if (U_FAILURE(status)) {
        return fallback;
    }
    const icu::Locale locale =
        localeId.empty() ? icu::Locale::getDefault() : icu::Locale(std::string(localeId).c_str());
    const std::string exact = amount.toString();
    const icu::number::FormattedNumber formatted =
        icu::number::NumberFormatter::withLocale(locale)
            .unit(usd)
            .precision(icu::number::Precision::minMaxFraction(0, 2))
            .formatDecimal(icu::StringPiece(exact.data(), static_cast<int32_t>(exact.size())),
                           status);
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
