// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer target: any bytes pasted into the smart-paste sheet. Besides crashes and what the
// sanitizers find, it checks what must hold for every input.

#include "paste/PasteParser.h"

#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using vorlane::ParsedCredential;
using vorlane::PasteParser;

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// "IP", "Email", "URL", "Domain", "Port", "Date": each at most once, in this order.
bool detectedTypesAreOrdered(const ParsedCredential& parsed) {
    constexpr std::array<std::string_view, 6> order{"IP", "Email", "URL", "Domain", "Port", "Date"};
    std::size_t next = 0;
    for (const std::string& type : parsed.detectedTypes) {
        const auto found =
            std::find(order.begin() + static_cast<std::ptrdiff_t>(next), order.end(), type);
        if (found == order.end()) {
            return false;
        }
        next = static_cast<std::size_t>(found - order.begin()) + 1;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("en_US"), status);
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("America/New_York"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const ParsedCredential parsed = PasteParser::parse(text);
    require(!parsed.title.empty());
    require(detectedTypesAreOrdered(parsed));
    require(parsed.detectedDate.has_value() ==
            (std::find(parsed.detectedTypes.begin(), parsed.detectedTypes.end(), "Date") !=
             parsed.detectedTypes.end()));
    // Every line kept in the notes is trimmed and not empty.
    for (std::size_t start = 0; start < parsed.notes.size();) {
        const std::size_t end = std::min(parsed.notes.find('\n', start), parsed.notes.size());
        require(end > start && parsed.notes[start] != ' ' && parsed.notes[end - 1] != ' ' &&
                parsed.notes[start] != '\t' && parsed.notes[end - 1] != '\t');
        start = end + 1;
    }
    // The parser is a pure function of its input.
    const ParsedCredential again = PasteParser::parse(text);
    require(again.notes == parsed.notes && again.title == parsed.title &&
            again.detectedTypes == parsed.detectedTypes);
    return 0;
}
