// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaObject>
#include <QObject>

#include <functional>
#include <thread>
#include <utility>

namespace vorlane {

// Runs one piece of slow, self-contained work (a key derivation) on a thread of its own and
// hands the result to the main loop, so that the window keeps drawing and answering Cancel.
// `work` must own everything it reads (capture by value) and touch nothing of the window;
// `done` runs on the main thread, posted to `receiver`. One job at a time: starting another
// waits for the one before to end (its result still arrives; the caller tells stale ones apart).
// Destroying the job waits for the thread, so it must be a member of `receiver` (destroyed
// before it): a result posted to a receiver that is going away is dropped by Qt unseen.
// Main thread.
class BackgroundJob {
public:
    explicit BackgroundJob(QObject& receiver)
        : m_receiver(receiver) {}
    ~BackgroundJob() { wait(); }
    BackgroundJob(const BackgroundJob&) = delete;
    BackgroundJob& operator=(const BackgroundJob&) = delete;

    template <typename Result>
    void run(std::function<Result()> work, std::function<void(Result)> done) {
        wait();
        QObject* receiver = &m_receiver;
        m_thread = std::thread([receiver, work = std::move(work), done = std::move(done)] {
            Result result = work();
            QMetaObject::invokeMethod(
                receiver, [done, result = std::move(result)]() mutable { done(std::move(result)); },
                Qt::QueuedConnection);
        });
    }

    // Waits for the running work, if any, to end; its result is still posted.
    void wait() {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

private:
    QObject& m_receiver;
    std::thread m_thread;
};

} // namespace vorlane
