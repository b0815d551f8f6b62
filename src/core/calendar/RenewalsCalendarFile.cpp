// SPDX-License-Identifier: GPL-3.0-or-later
#include "calendar/RenewalsCalendarFile.h"

#include "app/PreferenceStore.h"
#include "calendar/ReminderSettings.h"
#include "calendar/RenewalsCalendar.h"
#include "store/DataStore.h"
#include "util/PrivateFile.h"
#include "util/UserCalendar.h"

#include <filesystem>

namespace vorlane {

std::string RenewalsCalendarFile::pathBeside(const std::string& vaultPath) {
    return (std::filesystem::path(vaultPath).parent_path() / fileName).string();
}

bool RenewalsCalendarFile::isKept(const PreferenceStore& preferences) {
    return preferences.boolValue(preferenceKey, false);
}

void RenewalsCalendarFile::setKept(PreferenceStore& preferences, bool kept) {
    preferences.setBoolValue(preferenceKey, kept);
}

std::optional<std::string> RenewalsCalendarFile::refresh(const DataStore& store,
                                                         const PreferenceStore& preferences,
                                                         const UserCalendar& calendar) {
    if (!isKept(preferences)) {
        return std::nullopt;
    }
    const RenewalsCalendar::Written written =
        RenewalsCalendar::write(store.fetchAllServices(false), ReminderSettings::read(preferences),
                                calendar, calendar.now());
    return PrivateFile::write(pathBeside(store.path()), written.text);
}

} // namespace vorlane
