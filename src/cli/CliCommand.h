// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

// What every subcommand of vorlane-cli gets: the global options and its own arguments.
struct CliInvocation {
    std::optional<std::string> vaultPath; // --vault PATH
    bool json = false;                    // --json: one JSON object per line
    std::vector<std::string> arguments;   // after the command name, global options removed
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
};

// One subcommand. `run` returns the process exit status; errors go to `err` with a non-zero
// status, results to `out`.
class CliCommand {
public:
    virtual ~CliCommand() = default;
    virtual std::string_view name() const = 0;
    // One line for the help text, e.g. "search QUERY    services matching QUERY".
    virtual std::string_view usage() const = 0;
    virtual int run(CliInvocation& invocation) = 0;
};

} // namespace vorlane
