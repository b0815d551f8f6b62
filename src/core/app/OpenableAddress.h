// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Result.h"

#include <array>
#include <string>
#include <string_view>

namespace vorlane {

// What "Open URL" and "Open in Browser" may hand to the desktop. Login URLs come from pasted
// mails and imported files, and the desktop opens whatever its handlers accept: a "file:" address
// shows a local file, and a custom scheme can start any program registered for it. So only web,
// file-transfer, shell and mail addresses open.
class OpenableAddress {
public:
    static constexpr std::array<std::string_view, 6> allowedSchemes{"http", "https", "ftp",
                                                                    "sftp", "ssh",   "mailto"};

    struct Refusal {
        std::string message; // "This address cannot be opened: " and the scheme, lower case
    };

    // The exact address to open, or why not. The text is trimmed; one without a scheme, as
    // addresses are often kept ("cp.example.com:2083", "example.com/admin"), opens as http. The
    // caller must open the returned text as it is, without guessing again (a guess could turn
    // "/etc" into a local file). Empty text is refused with an empty scheme: nothing offers to
    // open an empty address.
    static Result<std::string, Refusal> resolve(std::string_view text);
};

} // namespace vorlane
