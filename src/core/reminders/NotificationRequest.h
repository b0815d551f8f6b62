// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Instant.h"

#include <string>

namespace vorlane {

// One scheduled reminder, shown once when its minute comes: what the notification centre keeps.
struct NotificationRequest {
    // The desktop's ordinary notification sound, or its sound for alerts that must not be missed.
    enum class Sound { standard, critical };
    // `timeSensitive` asks the desktop to show it even when it would hold ordinary ones back.
    enum class InterruptionLevel { active, timeSensitive };

    std::string identifier; // unique: adding one with the same identifier replaces it
    std::string title;
    std::string body;
    Sound sound = Sound::standard;
    std::string categoryIdentifier;
    InterruptionLevel interruptionLevel = InterruptionLevel::active;
    // The minute it falls due, as an instant whose seconds are zero; it does not repeat.
    Instant dueMinute;

    friend bool operator==(const NotificationRequest&, const NotificationRequest&) = default;
};

} // namespace vorlane
