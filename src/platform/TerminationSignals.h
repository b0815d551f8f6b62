// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <csignal>
#include <memory>

class QSocketNotifier;

namespace vorlane {

// Turns SIGTERM, SIGINT and SIGHUP (a logout, `kill`, Ctrl+C in the terminal that started the
// program, that terminal closing) into `terminationRequested` on the main loop, so that the
// program can end the way it does from its menu, clearing a copied secret and saving what is
// unsaved, instead of dying with both.
//
// The handlers are installed by the constructor, so that a signal that comes while the vault is
// still opening is kept; it is delivered once `listen` has been called with an event loop
// running. After the first delivery the earlier handlers are back, so that a second signal ends
// a program that does not quit. One instance at a time; main thread. The destructor restores the
// earlier handlers.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // Starts delivering; needs the application object. A signal already received is delivered
    // at the next turn of the event loop.
    void listen();

Q_SIGNALS:
    void terminationRequested(int signalNumber);

private:
    static void onSignal(int signalNumber);
    void deliver();
    void restoreHandlers();

    int m_pipe[2] = {-1, -1};
    struct sigaction m_previous[3] = {};
    bool m_installed = false;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vorlane
