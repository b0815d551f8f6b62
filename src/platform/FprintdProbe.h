// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "auth/Authenticator.h"

#include <QDBusConnection>

#include <chrono>
#include <string>

namespace vorlane {

// Asks fprintd (on the system bus) whether this machine has a fingerprint reader and whether the
// user has enrolled fingers on one. Every failure (no bus, no fprintd, no reader, no answer in
// time, a refusal) reads as "no biometrics". Blocking, but never for longer than the timeout per
// call, so the interface may ask while drawing. Main thread.
class FprintdProbe {
public:
    static constexpr std::chrono::milliseconds defaultTimeout{400};

    explicit FprintdProbe(QDBusConnection bus = QDBusConnection::systemBus(),
                          std::chrono::milliseconds timeout = defaultTimeout);

    BiometricsState probe(const std::string& userName) const;

private:
    QDBusConnection m_bus;
    std::chrono::milliseconds m_timeout;
};

} // namespace vorlane
