// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CliCommand.h"
#include "LibsecretBackend.h"
#include "QtTimers.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/SystemClock.h"
#include "util/UserCalendar.h"

#include <QCoreApplication>

#include <memory>

namespace vorlane {

// The vault as the store commands of vorlane-cli use it: the file named by --vault (or the
// default location), the wall clock, the user's calendar and the desktop's secret store.
class CliVault {
public:
    // Nothing when the vault cannot be opened; the reason has then been written to `err`.
    static std::unique_ptr<CliVault> open(CliInvocation& invocation);
    static std::unique_ptr<CliVault> open(const std::string& path, std::ostream& err);

    DataStore& store() { return *m_store; }
    const UserCalendar& calendar() const { return m_calendar; }
    KeychainManager& keychain() { return m_keychain; }

private:
    CliVault();

    // The Qt adapters (timers, the Secret Service probe) need an application object.
    std::unique_ptr<QCoreApplication> m_application;
    SystemClock m_clock;
    UserCalendar m_calendar;
    QtTimers m_timers; // the store's autosave is never due: commands save before they return
    LibsecretBackend m_backend;
    KeychainManager m_keychain;
    std::unique_ptr<DataStore> m_store;
};

} // namespace vorlane
