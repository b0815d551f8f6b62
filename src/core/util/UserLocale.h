// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <unicode/locid.h>

#include <string_view>

namespace vorlane {

// The locale names are ordered and money is written in: the one named, or the process's default
// (LANG / LC_ALL) when the id is empty. ICU reports the C and POSIX locales as en_US_POSIX, which
// says "no preference" rather than "American" and would sort every capital before every small
// letter and write "$ 4165.7": it becomes plain English, whose order is the root collation's and
// whose amounts are grouped ("$4,165.7"). Any thread.
icu::Locale userLocale(std::string_view localeId = {});

} // namespace vorlane
