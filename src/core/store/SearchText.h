// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace vorlane {

// The form in which search compares text: Unicode full case folding, then canonical composition
// (NFC), as UTF-8. "ACME", "Acme" and "acme" fold alike, "Straße" contains "STRASSE", and an "é"
// typed as one code point matches one stored as "e" plus a combining accent; accents still count,
// so "e" does not match "é". Folded texts are compared as bytes: UTF-8 is self-synchronising, so
// byte containment of whole folded strings is code-point containment.
class SearchText {
public:
    static std::string fold(std::string_view text);
    // Whether `foldedNeedle` (already folded, non-empty) occurs in `foldedHaystack`.
    static bool contains(std::string_view foldedHaystack, std::string_view foldedNeedle) {
        return foldedHaystack.find(foldedNeedle) != std::string_view::npos;
    }
    // Joins searchable fields into one folded text. The separator cannot occur in a folded
    // query of ordinary text, so a match never straddles two fields.
    static constexpr char fieldSeparator = '\x1f';
};

} // namespace vorlane
