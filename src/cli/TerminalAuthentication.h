// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <string>

namespace vorlane {

// The window's authentication, on a terminal: PAM (service "vorlane") for the user who runs the
// command, its questions asked at the controlling terminal without echo and its messages written
// to `err`, so that nothing mixes with the command's output. Needs the Qt application object a
// CliVault makes. Main thread; blocks until PAM has answered.
class TerminalAuthentication {
public:
    // True only when the user authenticated; otherwise a line on `err` says why not ("no
    // terminal to ask on", "authentication failed").
    static bool authenticate(const std::string& reason, std::ostream& err);
};

} // namespace vorlane
