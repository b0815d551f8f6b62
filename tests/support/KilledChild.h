// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// For the crash tests: a child program that works on a vault in a loop and announces each step
// on stdout, killed with SIGKILL at a chosen moment.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <map>
#include <sstream>
#include <string>
#include <thread>

namespace vorlane::testing {

// Starts `program` with `vault` as its argument, kills it `delay` after its first announcement
// (a line), and returns the last number announced after each word ("saving 12" → {"saving", 12}).
// Timing from that announcement rather than from the fork keeps the kills inside the child's loop
// however long a loaded machine takes to start a process.
inline std::map<std::string, long> runAndKill(const char* program, const std::string& vault,
                                              std::chrono::microseconds delay) {
    int output[2];
    EXPECT_EQ(::pipe(output), 0);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(output[1], STDOUT_FILENO);
        ::close(output[0]);
        ::close(output[1]);
        ::execl(program, program, vault.c_str(), nullptr);
        ::_exit(127);
    }
    ::close(output[1]);
    std::string text;
    char buffer[4096];
    ssize_t got = 0;
    while (text.find('\n') == std::string::npos &&
           (got = ::read(output[0], buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    std::this_thread::sleep_for(delay);
    ::kill(pid, SIGKILL);
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the child ended by itself, status " << status;

    while ((got = ::read(output[0], buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(output[0]);
    std::map<std::string, long> last;
    std::istringstream lines(text);
    std::string word;
    long number = 0;
    while (lines >> word >> number) {
        last[word] = number;
    }
    return last;
}

} // namespace vorlane::testing
