// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceType.h"
#include "util/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// What the paste parser made of one block of pasted text: the fields of a service credential for
// the user to review. A plain value; an empty text field means "not found". Text is UTF-8.
struct ParsedCredential {
    ServiceType serviceType = ServiceType::customSecret;
    std::string title;
    std::string provider;
    std::string hostname;
    std::string domain;
    std::string ipAddress;
    std::string loginURL;
    std::string username;
    std::string password;
    std::string email;
    std::string portString; // as found: the digits of a scan, or a labelled value as written
    std::string notes;      // the lines nothing was taken from, trimmed, joined with "\n"
    std::optional<Instant> detectedDate;
    // Which fields came from a pattern rather than a label, in the order they were found: only
    // "IP", "Email", "URL", "Domain", "Port" and "Date".
    std::vector<std::string> detectedTypes;

    // `portString` read as a decimal integer: an optional "+" or "-" and ASCII digits only, within
    // 64 bits. Nothing for anything else ("22/tcp", "", "٢٢", too many digits).
    std::optional<std::int64_t> portNumber() const { return decimalInteger(portString); }

    // How every port text is read as a number, here and when a credential is saved.
    static std::optional<std::int64_t> decimalInteger(std::string_view text);
};

} // namespace vorlane
