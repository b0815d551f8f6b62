// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorlane {

class AuthManager;
struct CurrencyChoice;
class PreferenceStore;

// The preferences screen: three tabs over four preferences kept in the preference store, and two
// texts about how the vault is protected. Apart from the currency, the preferences are only stored
// and shown; nothing else in the program reads them (the clipboard always clears after 30
// seconds, there is no automatic lock, the reminder offsets are fixed). Every read goes to the
// store, so the settings window and the settings sheet, which edit the same keys, always show the
// same values. Main thread; the store and the authentication manager must outlive the screen.
class SettingsScreen {
public:
    struct Key {
        static constexpr std::string_view clipboardClearTimeout = "clipboardClearTimeout";
        static constexpr std::string_view autoLockTimeout = "autoLockTimeout";
        static constexpr std::string_view showExpenseReminders = "showExpenseReminders";
        static constexpr std::string_view expirationWarningDays = "expirationWarningDays";
        static constexpr std::string_view currency = "currency";
    };
    static constexpr double defaultClipboardTimeout = 30;
    static constexpr double defaultAutoLockTimeout = 300;
    static constexpr bool defaultShowExpenseReminders = true;
    static constexpr int defaultWarningDays = 3;

    struct Tab {
        std::string_view title;
        std::string_view icon;
    };
    // General, Security, Notifications, in that order.
    static const std::vector<Tab>& tabs();

    struct Option {
        std::string_view label;
        double value;
    };
    // The pickers' entries in order; a stored value that matches none selects nothing.
    static const std::vector<Option>& clipboardOptions();
    static const std::vector<Option>& autoLockOptions();
    static const std::vector<Option>& warningDayOptions();
    // The index of `value` among `options`, if it is one of them.
    static std::optional<std::size_t> indexOf(const std::vector<Option>& options, double value);

    // -- Fixed texts
    static constexpr std::string_view appearanceSection = "Appearance";
    static constexpr std::string_view appearanceText =
        "Vorlane follows your system appearance setting.";
    static constexpr std::string_view dataSection = "Data";
    static constexpr std::string_view storageLabel = "Storage";
    static constexpr std::string_view storageValue =
        "Local only \xE2\x80\x94 your data never leaves this device";
    static constexpr std::string_view clipboardSection = "Clipboard";
    static constexpr std::string_view clipboardLabel = "Clear clipboard after";
    static constexpr std::string_view autoLockSection = "Auto-Lock";
    static constexpr std::string_view autoLockLabel = "Lock vault after";
    static constexpr std::string_view biometricsLabel = "Biometrics";
    static constexpr std::string_view authenticationSection = "Authentication";
    static constexpr std::string_view warningsSection = "Expiration Warnings";
    static constexpr std::string_view warningDaysLabel = "Warn before expiration";
    static constexpr std::string_view expenseRemindersLabel = "Show expense reminders";
    static constexpr std::string_view notificationsText =
        "Vorlane uses local desktop notifications to alert you about expiring services.";

    SettingsScreen(PreferenceStore& preferences, const AuthManager& auth);

    // -- Preferences, read from the store each time (the default while the key is absent) and
    // written to it at once.
    double clipboardTimeout() const;
    void setClipboardTimeout(double seconds);
    double autoLockTimeout() const;
    void setAutoLockTimeout(double seconds);
    bool showExpenseReminders() const;
    void setShowExpenseReminders(bool show);
    int warningDays() const;
    void setWarningDays(int days);

    // -- The vault's currency (Settings → General): one for the whole vault, amounts are never
    // converted. Every ISO 4217 code to choose from, with its name, alphabetically by code.
    static constexpr std::string_view currencyLabel = "Currency";
    static std::vector<CurrencyChoice> currencyChoices();
    // The stored code, "USD" while none is (or what is stored is not a current code).
    std::string currency() const;
    // Stores the code and writes every amount in it from now on; false, and nothing changed, for
    // a code that is not a current ISO 4217 currency.
    bool setCurrency(std::string_view code);
    // Makes the stored currency the one amounts are written in: at start, before anything shows
    // money (the window and vorlane-cli).
    static void applyCurrency(const PreferenceStore& preferences);

    // -- What the authentication rows say, asked of the system each time.
    // The "Biometrics" row is shown only when a biometric method can be used.
    bool showsBiometricsRow() const;
    // "Fingerprint available".
    std::string biometricsValue() const;
    // How the vault is protected; names "Biometrics" when the machine has no reader.
    std::string authenticationText() const;

private:
    PreferenceStore& m_preferences;
    const AuthManager& m_auth;
};

} // namespace vorlane
