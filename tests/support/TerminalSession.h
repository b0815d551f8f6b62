// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Runs vorlane-cli on a terminal of its own, as a person at a shell does, for the commands that
// ask for authentication there.

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace vorlane::testing {

// Reads from the terminal's master side until `until` has appeared or the child closed it.
inline std::string readTerminal(int master, const std::string& until) {
    std::string seen;
    char buffer[4096];
    while (until.empty() || seen.find(until) == std::string::npos) {
        pollfd ready{master, POLLIN, 0};
        if (poll(&ready, 1, 10000) <= 0) {
            break;
        }
        const ssize_t got = ::read(master, buffer, sizeof buffer);
        if (got <= 0) {
            break;
        }
        seen.append(buffer, static_cast<std::size_t>(got));
    }
    return seen;
}

// Runs `program` with `arguments` on a new terminal and answers its questions in order: each
// answer is typed once its prompt has appeared. Returns everything it showed and its exit status.
inline std::pair<int, std::string>
onTerminal(const char* program, const std::vector<std::string>& arguments,
           const std::vector<std::pair<std::string, std::string>>& answers) {
    int master = -1;
    const pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    if (pid == 0) {
        std::vector<char*> argv{const_cast<char*>(program)};
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        execv(program, argv.data());
        _exit(127);
    }
    std::string shown;
    for (const auto& [prompt, answer] : answers) {
        shown += readTerminal(master, prompt);
        const std::string line = answer + "\n";
        if (::write(master, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
            shown += "<the answer could not be typed>";
        }
    }
    shown += readTerminal(master, "");
    int status = 0;
    for (int tries = 0; waitpid(pid, &status, WNOHANG) == 0; ++tries) {
        if (tries == 1000) {
            kill(pid, SIGKILL);
        }
        usleep(10000);
    }
    ::close(master);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, shown};
}

// Runs `program` with `arguments` on a new terminal, types `typed` at the first
// "Password: " prompt (when given), and returns everything it showed and its exit status.
inline std::pair<int, std::string> onTerminal(const char* program,
                                              const std::vector<std::string>& arguments,
                                              const std::string& typed) {
    if (typed.empty()) {
        return onTerminal(program, arguments, std::vector<std::pair<std::string, std::string>>{});
    }
    return onTerminal(program, arguments, {{"Password: ", typed}});
}

} // namespace vorlane::testing
