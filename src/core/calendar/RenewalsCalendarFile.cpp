// SPDX-License-Identifier: GPL-3.0-or-later
#include "calendar/RenewalsCalendarFile.h"

#include "app/PreferenceStore.h"
#include "calendar/ReminderSettings.h"
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

RenewalsCalendar::Written RenewalsCalendarFile::build(const DataStore& store,
                                                      const PreferenceStore& preferences,
                                                      const UserCalendar& calendar) {
    return RenewalsCalendar::write(store.fetchAllServices(false),
                                   ReminderSettings::read(preferences), calendar, calendar.now());
}

std::optional<std::string> RenewalsCalendarFile::refresh(const DataStore& store,
                                                         const PreferenceStore& preferences,
                                                         const UserCalendar& calendar) {
    if (!isKept(preferences)) {
        return std::nullopt;
    }
    return PrivateFile::write(pathBeside(store.path()), build(store, preferences, calendar).text);
}

} // namespace vorlane
