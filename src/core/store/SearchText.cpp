// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/SearchText.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace vorlane {

std::string SearchText::fold(std::string_view text) {
    bool ascii = true;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            ascii = false;
            break;
        }
    }
    std::string result;
    if (ascii) {
        // Most of a vault is ASCII (host names, addresses, e-mail); folding it needs no ICU.
        result.reserve(text.size());
        for (const char c : text) {
            result.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
        }
        return result;
    }
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    unicode.foldCase();
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_SUCCESS(status)) {
        icu::UnicodeString composed = nfc->normalize(unicode, status);
        if (U_SUCCESS(status)) {
            unicode = composed;
        }
    }
    unicode.toUTF8String(result);
    return result;
}

} // namespace vorlane
