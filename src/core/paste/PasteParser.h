// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceType.h"
#include "paste/ParsedCredential.h"
#include "util/Instant.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// Turns a block of pasted text (a provider's welcome mail, a note of "Host: ..." and
// "Password: ..." lines) into a ParsedCredential, in five passes: labelled lines, whole-text
// scans for the fields still empty, a date, the service type and title, and the leftover lines
// as notes. A field filled by one pass is never overwritten by a later one.
//
// Pure and thread-safe: no storage, no settings, no clock. Dates are read in ICU's default
// locale and time zone at the time of the call. The regular expressions are compiled once per
// process on first use. Text is UTF-8; ill-formed sequences are read as U+FFFD.
//
// Pasted text is untrusted, so every regular-expression match runs under a work limit: on
// pathological input (megabytes built to make a pattern backtrack) a scan that hits the limit
// counts as finding nothing, and a parse of up to 1 MB stays well under a second.
class PasteParser {
public:
    // One row of the label table: a line "<label>: value" or "<label> value" fills `field`.
    struct LabelPattern {
        std::string_view label;
        std::string ParsedCredential::*field;
    };
    // The 26 labels in the order they are tried; the first that takes a line wins.
    static const std::array<LabelPattern, 26>& labelPatterns();

    // Never fails: an empty text gives the initial record titled "Custom Secret".
    static ParsedCredential parse(std::string_view text);

    // The date in `text` read whole by the first of "yyyy-MM-dd", "MM/dd/yyyy", "dd-MM-yyyy",
    // "dd/MM/yyyy" that accepts it, strictly (no 13th month, no 31 April); midnight local time.
    // Nothing when none accepts it.
    static std::optional<Instant> parseDate(std::string_view text);

    // The kind of service from keywords in `text` (plain lower-case substrings, so "capital"
    // counts as "api") and from the port: SSH for 22, FTP for 21. customSecret when nothing fits.
    static ServiceType inferServiceType(std::string_view text, const ParsedCredential& parsed);

    // The type's label, then " — " and the first of domain, hostname, IP address and provider
    // that is not empty; the label alone when all four are.
    static std::string generateTitle(const ParsedCredential& parsed);

    // The host of an http(s) URL as written (brackets of an IPv6 literal removed). Nothing when
    // it has no host or its authority holds a character that a URL does not allow there.
    static std::optional<std::string> urlHost(std::string_view url);
};

} // namespace vorlane
