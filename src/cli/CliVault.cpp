// SPDX-License-Identifier: GPL-3.0-or-later
#include "CliVault.h"

#include "QtPreferenceStore.h"
#include "screens/SettingsScreen.h"
#include "store/VaultLocation.h"

#include <QStandardPaths>

#include <ostream>

namespace vorlane {

namespace {

int applicationArgc = 1;
char applicationName[] = "vorlane-cli";
char* applicationArgv[] = {applicationName, nullptr};

} // namespace

CliVault::CliVault()
    : m_application(QCoreApplication::instance()
                        ? nullptr
                        : std::make_unique<QCoreApplication>(applicationArgc, applicationArgv))
    , m_calendar(m_clock)
    , m_keychain(m_backend) {}

std::unique_ptr<CliVault> CliVault::open(CliInvocation& invocation) {
    return open(VaultLocation::resolve(invocation.vaultPath), invocation.err);
}

std::unique_ptr<CliVault> CliVault::open(const std::string& path, std::ostream& err) {
    std::unique_ptr<CliVault> vault(new CliVault());
    auto opened = DataStore::open(path, vault->m_keychain, vault->m_calendar, vault->m_timers);
    if (!opened) {
        err << "vorlane-cli: Failed to initialize data store: " << opened.error() << "\n";
        return nullptr;
    }
    vault->m_store = std::move(opened).value();
    // Amounts in the currency chosen in the window's settings (the file QSettings keeps for the
    // organization "Vorlane" and the application "vorlane").
    const QtPreferenceStore preferences(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/Vorlane/vorlane.conf"));
    SettingsScreen::applyCurrency(preferences);
    return vault;
}

} // namespace vorlane
