// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

// One field of a CSV line as RFC 4180 writes it: as it is, unless it holds a comma, a quote or a
// line break; then in quotes, with each quote doubled. Spreadsheets and our own reader take both.
std::string csvField(std::string_view text);

} // namespace vorlane
