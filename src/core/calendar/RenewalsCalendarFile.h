// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "calendar/RenewalsCalendar.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

class DataStore;
class PreferenceStore;
class UserCalendar;

// The renewals calendar kept beside the vault as `renewals.ics` when the user asks for it, so that
// a calendar program subscribed to that file follows every renewal. Rewritten whole (atomically,
// owner-only) from the live services under the user's reminder settings; switching it off leaves
// the last file where it is, since a calendar may still be subscribed to it. Main thread.
class RenewalsCalendarFile {
public:
    static constexpr std::string_view preferenceKey = "keepRenewalsCalendar";
    static constexpr std::string_view fileName = "renewals.ics";

    // `renewals.ics` in the vault file's folder.
    static std::string pathBeside(const std::string& vaultPath);
    static bool isKept(const PreferenceStore& preferences);
    static void setKept(PreferenceStore& preferences, bool kept);

    // The vault's renewals (services not archived) under the user's reminder settings, dated now:
    // what every export of the calendar writes, from the window, the command line or this file.
    static RenewalsCalendar::Written
    build(const DataStore& store, const PreferenceStore& preferences, const UserCalendar& calendar);

    // Rewrites the file when it is kept; nothing otherwise. The reason when the write failed (the
    // previous file, if any, is left as it was).
    static std::optional<std::string> refresh(const DataStore& store,
                                              const PreferenceStore& preferences,
                                              const UserCalendar& calendar);
};

} // namespace vorlane
