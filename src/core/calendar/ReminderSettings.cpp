// SPDX-License-Identifier: GPL-3.0-or-later
#include "calendar/ReminderSettings.h"

#include "app/PreferenceStore.h"

#include <algorithm>
#include <string>

namespace vorlane {

namespace {

std::string daysBeforeKey(int days) {
    return std::string(ReminderSettings::Key::daysBeforePrefix) + std::to_string(days);
}

constexpr int atExpirationTime = -1;
constexpr int minutesPerDay = 24 * 60;

} // namespace

ReminderSettings ReminderSettings::read(const PreferenceStore& preferences) {
    const ReminderSettings defaults;
    ReminderSettings settings;
    settings.daysBefore.clear();
    for (const int days : offeredDaysBefore) {
        if (preferences.boolValue(daysBeforeKey(days),
                                  std::ranges::find(defaults.daysBefore, days) !=
                                      defaults.daysBefore.end())) {
            settings.daysBefore.push_back(days);
        }
    }
    const int minute = preferences.intValue(Key::minuteOfDay, atExpirationTime);
    if (minute >= 0 && minute < minutesPerDay) {
        settings.minuteOfDay = minute;
    }
    settings.includeAutoRenewing =
        preferences.boolValue(Key::includeAutoRenewing, defaults.includeAutoRenewing);
    return settings;
}

void ReminderSettings::write(PreferenceStore& preferences) const {
    for (const int days : offeredDaysBefore) {
        preferences.setBoolValue(daysBeforeKey(days),
                                 std::ranges::find(daysBefore, days) != daysBefore.end());
    }
    preferences.setIntValue(Key::minuteOfDay, minuteOfDay.value_or(atExpirationTime));
    preferences.setBoolValue(Key::includeAutoRenewing, includeAutoRenewing);
}

bool ReminderSettings::isKey(std::string_view key) {
    return key.starts_with(Key::daysBeforePrefix) || key == Key::minuteOfDay ||
           key == Key::includeAutoRenewing;
}

} // namespace vorlane
