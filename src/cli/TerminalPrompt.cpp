// SPDX-License-Identifier: GPL-3.0-or-later
#include "TerminalPrompt.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>

namespace vorlane {

namespace {

// What the signal handler needs to put the terminal back: a program interrupted at the prompt
// must not leave the user's shell without echo.
int promptTerminal = -1;
termios savedTerminal{};

void restoreAndReraise(int signalNumber) {
    tcsetattr(promptTerminal, TCSAFLUSH, &savedTerminal);
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

} // namespace

bool TerminalPrompt::isInteractive() {
    return isatty(STDIN_FILENO) == 1;
}

std::optional<std::string> TerminalPrompt::readSecret(std::string_view prompt) {
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (terminal < 0) {
        return std::nullopt;
    }
    termios quiet{};
    if (tcgetattr(terminal, &savedTerminal) != 0) {
        ::close(terminal);
        return std::nullopt;
    }
    quiet = savedTerminal;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    quiet.c_lflag |= ECHONL; // the Enter still moves to the next line
    promptTerminal = terminal;
    const auto previousInt = std::signal(SIGINT, restoreAndReraise);
    const auto previousTerm = std::signal(SIGTERM, restoreAndReraise);
    const auto previousHup = std::signal(SIGHUP, restoreAndReraise);

    std::optional<std::string> line;
    // Echo goes off before the prompt shows, so nothing typed in answer to it can be echoed;
    // TCSAFLUSH drops whatever was typed before the question was asked.
    if (tcsetattr(terminal, TCSAFLUSH, &quiet) == 0 &&
        ::write(terminal, prompt.data(), prompt.size()) == static_cast<ssize_t>(prompt.size())) {
        std::string text;
        // Room reserved up front, so the string is not reallocated (leaving a copy of the secret
        // behind in freed memory) for any answer a person would type.
        text.reserve(1024);
        char c = 0;
        ssize_t got = 0;
        while ((got = ::read(terminal, &c, 1)) == 1 && c != '\n') {
            text.push_back(c);
        }
        if (got == 1 || !text.empty()) {
            line = std::move(text);
        }
        c = 0;
    }

    tcsetattr(terminal, TCSANOW, &savedTerminal);
    std::signal(SIGINT, previousInt);
    std::signal(SIGTERM, previousTerm);
    std::signal(SIGHUP, previousHup);
    promptTerminal = -1;
    ::close(terminal);
    return line;
}

} // namespace vorlane
