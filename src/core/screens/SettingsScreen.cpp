// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SettingsScreen.h"

#include "app/PreferenceStore.h"
#include "auth/AuthManager.h"
#include "util/CurrencyFormat.h"

#include <algorithm>

namespace vorlane {

const std::vector<SettingsScreen::Tab>& SettingsScreen::tabs() {
    static const std::vector<Tab> all{
        {"General", "gear"},
        {"Security", "lock.shield"},
        {"Notifications", "bell"},
    };
    return all;
}

const std::vector<SettingsScreen::Option>& SettingsScreen::clipboardOptions() {
    static const std::vector<Option> options{
        {"10 seconds", 10},
        {"30 seconds", 30},
        {"60 seconds", 60},
        {"Never", 0},
    };
    return options;
}

const std::vector<SettingsScreen::Option>& SettingsScreen::autoLockOptions() {
    static const std::vector<Option> options{
        {"1 minute", 60},     {"5 minutes", 300}, {"15 minutes", 900},
        {"30 minutes", 1800}, {"Never", 0},
    };
    return options;
}

const std::vector<SettingsScreen::Option>& SettingsScreen::warningDayOptions() {
    static const std::vector<Option> options{
        {"1 day before", 1},
        {"3 days before", 3},
        {"7 days before", 7},
        {"14 days before", 14},
    };
    return options;
}

std::optional<std::size_t> SettingsScreen::indexOf(const std::vector<Option>& options,
                                                   double value) {
    for (std::size_t i = 0; i < options.size(); ++i) {
        if (options[i].value == value) {
            return i;
        }
    }
    return std::nullopt;
}

SettingsScreen::SettingsScreen(PreferenceStore& preferences, const AuthManager& auth)
    : m_preferences(preferences)
    , m_auth(auth) {}

double SettingsScreen::clipboardTimeout() const {
    return m_preferences.doubleValue(Key::clipboardClearTimeout, defaultClipboardTimeout);
}

void SettingsScreen::setClipboardTimeout(double seconds) {
    m_preferences.setDoubleValue(Key::clipboardClearTimeout, seconds);
}

double SettingsScreen::autoLockTimeout() const {
    return m_preferences.doubleValue(Key::autoLockTimeout, defaultAutoLockTimeout);
}

void SettingsScreen::setAutoLockTimeout(double seconds) {
    m_preferences.setDoubleValue(Key::autoLockTimeout, seconds);
}

bool SettingsScreen::showExpenseReminders() const {
    return m_preferences.boolValue(Key::showExpenseReminders, defaultShowExpenseReminders);
}

void SettingsScreen::setShowExpenseReminders(bool show) {
    m_preferences.setBoolValue(Key::showExpenseReminders, show);
}

int SettingsScreen::warningDays() const {
    return m_preferences.intValue(Key::expirationWarningDays, defaultWarningDays);
}

void SettingsScreen::setWarningDays(int days) {
    m_preferences.setIntValue(Key::expirationWarningDays, days);
}

std::vector<CurrencyChoice> SettingsScreen::currencyChoices() {
    return vorlane::currencyChoices();
}

std::string SettingsScreen::currency() const {
    const std::string stored = m_preferences.stringValue(Key::currency, defaultCurrency);
    const std::vector<CurrencyChoice> choices = currencyChoices();
    const bool known = std::any_of(choices.begin(), choices.end(),
                                   [&](const CurrencyChoice& c) { return c.code == stored; });
    return known ? stored : std::string(defaultCurrency);
}

bool SettingsScreen::setCurrency(std::string_view code) {
    if (!setVaultCurrency(code)) {
        return false;
    }
    m_preferences.setStringValue(Key::currency, code);
    return true;
}

void SettingsScreen::applyCurrency(const PreferenceStore& preferences) {
    // A code that is no longer current (edited by hand, withdrawn since) leaves the default.
    if (!setVaultCurrency(preferences.stringValue(Key::currency, defaultCurrency))) {
        setVaultCurrency(defaultCurrency);
    }
}

bool SettingsScreen::showsBiometricsRow() const {
    return m_auth.biometricsAvailable();
}

std::string SettingsScreen::biometricsValue() const {
    return m_auth.biometryName() + " available";
}

std::string SettingsScreen::authenticationText() const {
    return "Vorlane uses your system's authentication (" + m_auth.biometryName() +
           " + password) to protect your vault.";
}

} // namespace vorlane
