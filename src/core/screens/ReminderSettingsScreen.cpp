// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ReminderSettingsScreen.h"

#include "calendar/RenewalsCalendarFile.h"

#include <algorithm>
#include <cstdio>

namespace vorlane {

std::vector<ReminderSettingsScreen::LeadTime> ReminderSettingsScreen::leadTimes() {
    std::vector<LeadTime> all;
    for (const int days : ReminderSettings::offeredDaysBefore) {
        all.push_back({days, days == 0   ? std::string("On the day")
                             : days == 1 ? std::string("1 day before")
                                         : std::to_string(days) + " days before"});
    }
    return all;
}

std::vector<std::string> ReminderSettingsScreen::remindAtChoices() {
    char time[8];
    std::snprintf(time, sizeof time, "%02d:%02d", ReminderSettings::offeredMinuteOfDay / 60,
                  ReminderSettings::offeredMinuteOfDay % 60);
    return {"Time of expiration", time};
}

ReminderSettingsScreen::ReminderSettingsScreen(PreferenceStore& preferences)
    : m_preferences(preferences) {}

ReminderSettings ReminderSettingsScreen::settings() const {
    return ReminderSettings::read(m_preferences);
}

bool ReminderSettingsScreen::isChosen(int daysBefore) const {
    const ReminderSettings current = settings();
    return std::ranges::find(current.daysBefore, daysBefore) != current.daysBefore.end();
}

void ReminderSettingsScreen::setChosen(int daysBefore, bool chosen) {
    ReminderSettings current = settings();
    std::erase(current.daysBefore, daysBefore);
    if (chosen) {
        current.daysBefore.push_back(daysBefore);
        std::ranges::sort(current.daysBefore, std::greater<>());
    }
    write(current);
}

int ReminderSettingsScreen::remindAtIndex() const {
    return settings().minuteOfDay ? 1 : 0;
}

void ReminderSettingsScreen::setRemindAtIndex(int index) {
    ReminderSettings current = settings();
    current.minuteOfDay =
        index == 1 ? std::optional(ReminderSettings::offeredMinuteOfDay) : std::nullopt;
    write(current);
}

bool ReminderSettingsScreen::includesAutoRenewing() const {
    return settings().includeAutoRenewing;
}

void ReminderSettingsScreen::setIncludesAutoRenewing(bool include) {
    ReminderSettings current = settings();
    current.includeAutoRenewing = include;
    write(current);
}

void ReminderSettingsScreen::write(const ReminderSettings& settings) {
    settings.write(m_preferences);
}

std::string ReminderSettingsScreen::calendarHelp(const std::string& calendarPath) {
    const std::string location = "file://" + calendarPath;
    return "Vorlane rewrites " + calendarPath +
           " after every change. To follow it in Thunderbird: File → New → Calendar… → On the "
           "Network, location " +
           location + ". In Evolution: File → New → Calendar, type \"On The Web\", URL " +
           location +
           ". GNOME Calendar imports a copy instead: Manage Calendars → Add Calendar → Import a "
           "Calendar.";
}

bool ReminderSettingsScreen::keepsCalendarFile() const {
    return RenewalsCalendarFile::isKept(m_preferences);
}

void ReminderSettingsScreen::setKeepsCalendarFile(bool keep) {
    RenewalsCalendarFile::setKept(m_preferences, keep);
}

} // namespace vorlane
