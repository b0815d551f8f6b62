// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UserLocale.h"

#include <string>

namespace vorlane {

icu::Locale userLocale(std::string_view localeId) {
    const icu::Locale locale =
        localeId.empty() ? icu::Locale::getDefault() : icu::Locale(std::string(localeId).c_str());
    if (std::string_view(locale.getVariant()) == "POSIX") {
        return icu::Locale::getEnglish();
    }
    return locale;
}

} // namespace vorlane
