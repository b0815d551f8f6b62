// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "calendar/ReminderSettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class PreferenceStore;

// Settings → Notifications, "Remind me": which lead times, at what time of day, and whether
// services that renew automatically are reminded. Reads and writes the preference store at
// once (ReminderSettings); the caller tells the reminder schedule to rebuild. Main thread; the
// store must outlive the screen.
class ReminderSettingsScreen {
public:
    static constexpr std::string_view remindMeLabel = "Remind me";
    static constexpr std::string_view remindAtLabel = "Remind at";
    static constexpr std::string_view autoRenewingLabel =
        "Also for services that renew automatically";
    static constexpr std::string_view keepCalendarLabel = "Keep a calendar file up to date";

    struct LeadTime {
        int daysBefore;
        std::string label; // "30 days before" … "1 day before", "On the day"
    };
    // Longest first.
    static std::vector<LeadTime> leadTimes();
    // "Time of expiration", then the offered time of day ("09:00").
    static std::vector<std::string> remindAtChoices();

    // How to follow the kept calendar file (`calendarPath`) in the usual calendar programs.
    static std::string calendarHelp(const std::string& calendarPath);

    explicit ReminderSettingsScreen(PreferenceStore& preferences);

    ReminderSettings settings() const;
    bool isChosen(int daysBefore) const;
    void setChosen(int daysBefore, bool chosen);
    // 0: at the expiration's time; 1: at the offered time of day.
    int remindAtIndex() const;
    void setRemindAtIndex(int index);
    bool includesAutoRenewing() const;
    void setIncludesAutoRenewing(bool include);
    // Whether renewals.ics beside the vault is rewritten after every change (RenewalsCalendarFile).
    bool keepsCalendarFile() const;
    void setKeepsCalendarFile(bool keep);

private:
    void write(const ReminderSettings& settings);

    PreferenceStore& m_preferences;
};

} // namespace vorlane
