// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace vorlane {

class PreferenceStore;

// What the user chose in Settings → Notifications about reminders: how many days before an
// expiration, at which time of day, and whether services that renew automatically get them. The
// reminder schedule and the renewals calendar both follow these. Kept in the preference store;
// a plain value otherwise, safe to copy to another thread.
struct ReminderSettings {
    struct Key {
        // One switch per offered lead time: "remindDaysBefore30" … "remindDaysBefore0".
        static constexpr std::string_view daysBeforePrefix = "remindDaysBefore";
        // Minutes after midnight, or -1 for the expiration's own time of day.
        static constexpr std::string_view minuteOfDay = "remindAtMinuteOfDay";
        static constexpr std::string_view includeAutoRenewing = "remindAutoRenewing";
    };
    // The lead times offered, longest first; 0 is the day itself.
    static constexpr std::array<int, 6> offeredDaysBefore{30, 14, 7, 3, 1, 0};
    // The time of day offered when reminders come at a fixed time: 09:00.
    static constexpr int offeredMinuteOfDay = 9 * 60;

    // Chosen lead times, longest first, each one of `offeredDaysBefore`.
    std::vector<int> daysBefore{3, 1};
    // Nothing: at the expiration's time of day. Else minutes after local midnight.
    std::optional<int> minuteOfDay = std::nullopt;
    bool includeAutoRenewing = true;

    // The stored choices; defaults for keys never written (or out of range).
    static ReminderSettings read(const PreferenceStore& preferences);
    // Writes every key.
    void write(PreferenceStore& preferences) const;
    // Whether `key` is one of those above (a change to it moves reminders).
    static bool isKey(std::string_view key);

    friend bool operator==(const ReminderSettings&, const ReminderSettings&) = default;
};

} // namespace vorlane
