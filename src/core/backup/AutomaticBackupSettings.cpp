// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/AutomaticBackupSettings.h"

#include "app/PreferenceStore.h"

#include <algorithm>

namespace vorlane {

AutomaticBackupSettings AutomaticBackupSettings::read(const PreferenceStore& preferences) {
    const AutomaticBackupSettings defaults;
    AutomaticBackupSettings settings;
    settings.enabled = preferences.boolValue(Key::enabled, defaults.enabled);
    settings.folder = preferences.stringValue(Key::folder, defaults.folder);
    settings.keepCount = clampedKeepCount(preferences.intValue(Key::keepCount, defaults.keepCount));
    return settings;
}

void AutomaticBackupSettings::write(PreferenceStore& preferences) const {
    preferences.setBoolValue(Key::enabled, enabled);
    preferences.setStringValue(Key::folder, folder);
    preferences.setIntValue(Key::keepCount, clampedKeepCount(keepCount));
}

int AutomaticBackupSettings::clampedKeepCount(int count) {
    return std::clamp(count, minimumKeepCount, maximumKeepCount);
}

} // namespace vorlane
