// SPDX-License-Identifier: GPL-3.0-or-later
#include "TerminationSignals.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace vorlane {
namespace {

constexpr int handled[] = {SIGTERM, SIGINT, SIGHUP};

// The write end of the instance's pipe, for the handler, which may only make async-signal-safe
// calls: write(2) of one byte is.
volatile std::sig_atomic_t writeEnd = -1;

} // namespace

TerminationSignals::TerminationSignals() {
    if (::pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // the signals keep their default: the program ends as it did before
    }
    writeEnd = m_pipe[1];
    struct sigaction action = {};
    action.sa_handler = &TerminationSignals::onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int i = 0; i < 3; ++i) {
        ::sigaction(handled[i], &action, &m_previous[i]);
    }
    m_installed = true;
}

TerminationSignals::~TerminationSignals() {
    restoreHandlers();
    m_notifier.reset();
    for (const int fd : m_pipe) {
        if (fd >= 0) {
            ::close(fd);
        }
    }
}

void TerminationSignals::listen() {
    if (m_pipe[0] < 0 || m_notifier) {
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::deliver);
}

void TerminationSignals::onSignal(int signalNumber) {
    const int saved = errno;
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    if (writeEnd >= 0) {
        // A full pipe means a delivery is already pending: nothing is lost by dropping this one.
        [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    }
    errno = saved;
}

void TerminationSignals::deliver() {
    unsigned char byte = 0;
    int signalNumber = 0;
    while (::read(m_pipe[0], &byte, 1) == 1) {
        signalNumber = byte;
    }
    if (signalNumber == 0 || !m_installed) {
        return;
    }
    restoreHandlers();
    Q_EMIT terminationRequested(signalNumber);
}

void TerminationSignals::restoreHandlers() {
    if (!m_installed) {
        return;
    }
    for (int i = 0; i < 3; ++i) {
        ::sigaction(handled[i], &m_previous[i], nullptr);
    }
    m_installed = false;
    writeEnd = -1;
}

} // namespace vorlane
