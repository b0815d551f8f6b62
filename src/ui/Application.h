// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace vorlane {

// Start-up of the desktop program: the command line (which must answer --help and --version
// without a display), the icon theme, the main window.
class Application {
public:
    // Runs the program to completion and returns its exit status.
    static int run(int argc, char* argv[]);
};

} // namespace vorlane
