// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace vorlane {

class AppState;
class AuthManager;
class AutomaticBackup;
class Clipboard;
class DataStore;
class PreferenceStore;
class ServiceActions;
class Timers;
class UserCalendar;

// The long-lived objects of one run, created at start-up and handed to every screen. Nothing here
// is owned: the application keeps them all alive until the last window is gone.
struct AppContext {
    DataStore& store;
    AppState& state;
    AuthManager& auth;
    const UserCalendar& calendar; // also the clock: calendar.now()
    Timers& timers;
    Clipboard& clipboard;
    PreferenceStore& preferences;
    const ServiceActions& serviceActions;
    // The running program's automatic backups; null where nothing backs up (a screenshot, a test
    // of another screen), and then Settings has no Backups tab.
    AutomaticBackup* backups = nullptr;
};

} // namespace vorlane
