// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// Asks the person at the controlling terminal for a secret without echoing what they type. Goes
// through /dev/tty rather than stdin/stdout, so that the answer never mixes with piped output.
class TerminalPrompt {
public:
    // Whether stdin is a terminal, i.e. someone is there to be asked.
    static bool isInteractive();
    // Writes `prompt`, reads one line with echo off, restores the terminal (also when Ctrl+C
    // ends the program meanwhile) and returns the line without its line break. Nothing when
    // there is no terminal or reading fails. The caller wipes the returned text.
    static std::optional<std::string> readSecret(std::string_view prompt);
};

} // namespace vorlane
