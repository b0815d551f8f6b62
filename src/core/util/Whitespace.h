// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace vorlane {

// Whitespace is Unicode's White_Space property, not only ASCII: a no-break space (U+00A0), an
// ideographic space (U+3000) or a line separator (U+2028) pasted from a web page or a mail is
// as empty as a space. One rule for every text the user types or pastes.

// `text` (UTF-8) without the whitespace at either end; a view into `text`. Invalid bytes are
// not whitespace.
std::string_view trimmed(std::string_view text);

// True when `text` is empty or only whitespace.
bool isBlank(std::string_view text);

} // namespace vorlane
