// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Runs the programs under test the way a user does from a shell.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vorlane::testing {

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// `text` as one word for /bin/sh.
inline std::string shellWord(const std::string& text) {
    std::string out = "'";
    for (const char c : text) {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + "'";
}

struct CommandRun {
    int status = -1; // the exit status; -1 when the program did not exit by itself
    std::string out;
    std::string err;
};

// Runs a shell command line with stdin from the file `input` (by default nobody is there to
// answer), and returns its exit status and what it wrote to stdout and stderr.
inline CommandRun runCommand(const std::string& command, const std::string& input = "/dev/null") {
    char errPath[] = "/tmp/vorlane-stderr-XXXXXX";
    ::close(::mkstemp(errPath));
    CommandRun run;
    FILE* pipe = ::popen((command + " <" + shellWord(input) + " 2>" + errPath).c_str(), "r");
    char buffer[4096];
    std::size_t got = 0;
    while (pipe != nullptr && (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        run.out.append(buffer, got);
    }
    const int status = pipe != nullptr ? ::pclose(pipe) : -1;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = readFile(errPath);
    std::filesystem::remove(errPath);
    return run;
}

// Runs a reference program of the system (oathtool, say) rather than one under test: without the
// preloads the tests run under (pam_wrapper, and the sanitizers' runtime in a sanitized build),
// which are there for our programs; under them, someone else's program would report its own
// leaks and fail.
inline CommandRun runReferenceTool(const std::string& command) {
    return runCommand("env -u LD_PRELOAD " + command);
}

} // namespace vorlane::testing
