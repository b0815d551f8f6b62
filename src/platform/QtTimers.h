// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Timers.h"

#include <QObject>

#include <unordered_map>

class QTimer;

namespace vorlane {

// Timers on the Qt event loop of the thread that creates this object (the main thread).
class QtTimers final : public Timers {
public:
    QtTimers();
    ~QtTimers() override;

    TimerId startOneShot(std::chrono::milliseconds delay, Callback callback) override;
    void cancel(TimerId id) override;
    void post(Callback callback) override;

private:
    QObject m_context; // lives on the main thread; queued calls are delivered through it
    TimerId m_lastId = 0;
    std::unordered_map<TimerId, QTimer*> m_timers; // owned through m_context
};

} // namespace vorlane
