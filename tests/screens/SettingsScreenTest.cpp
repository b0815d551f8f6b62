// SPDX-License-Identifier: GPL-3.0-or-later
// The settings over real QSettings in the fixture's temp INI file: the values a first run shows,
// what each choice writes to the file, the currency every amount is written in, and the texts of
// a machine without a fingerprint reader.

#include "screens/SettingsScreen.h"

#include "ScreenFixture.h"
#include "util/CurrencyFormat.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>

namespace vorlane::testing {
namespace {

class SettingsScreenTest : public ScreenFixture {
protected:
    // The label a picker shows for the value the screen reads, or "(none)".
    static std::string shown(const std::vector<SettingsScreen::Option>& options, double value) {
        const auto index = SettingsScreen::indexOf(options, value);
        return index ? std::string(options[*index].label) : "(none)";
    }

    // The INI file's text on disk, once QSettings has written what is pending (it does so from
    // the event loop), as the next run will read it.
    QString fileText() {
        QCoreApplication::processEvents();
        QFile file(m_folder.filePath(QStringLiteral("preferences.ini")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    bool fileHasLine(const QString& line) {
        return waitFor([&] { return fileText().split(QLatin1Char('\n')).contains(line); });
    }
};

TEST_F(SettingsScreenTest, AFirstRunShowsTheDefaultsAndWritesNothing) {
    const SettingsScreen screen(m_preferences, m_auth);
    EXPECT_EQ(shown(SettingsScreen::clipboardOptions(), screen.clipboardTimeout()), "30 seconds");
    EXPECT_EQ(shown(SettingsScreen::autoLockOptions(), screen.autoLockTimeout()), "5 minutes");
    EXPECT_EQ(shown(SettingsScreen::warningDayOptions(), screen.warningDays()), "3 days before");
    EXPECT_TRUE(screen.showExpenseReminders());
    EXPECT_FALSE(fileText().contains(QStringLiteral("clipboardClearTimeout")));
    EXPECT_FALSE(fileText().contains(QStringLiteral("expirationWarningDays")));
}

TEST_F(SettingsScreenTest, EveryChoiceIsWrittenUnderItsKeyAndNeverIsZero) {
    SettingsScreen screen(m_preferences, m_auth);
    screen.setClipboardTimeout(SettingsScreen::clipboardOptions().back().value);
    screen.setAutoLockTimeout(SettingsScreen::autoLockOptions().back().value);
    screen.setWarningDays(14);
    screen.setShowExpenseReminders(false);

    EXPECT_TRUE(fileHasLine(QStringLiteral("clipboardClearTimeout=0"))) << fileText().toStdString();
    EXPECT_TRUE(fileHasLine(QStringLiteral("autoLockTimeout=0")));
    EXPECT_TRUE(fileHasLine(QStringLiteral("expirationWarningDays=14")));
    EXPECT_TRUE(fileHasLine(QStringLiteral("showExpenseReminders=false")));

    // A stored 0 is a choice, not an absent key: it must not fall back to the default.
    const SettingsScreen other(m_preferences, m_auth);
    EXPECT_EQ(shown(SettingsScreen::clipboardOptions(), other.clipboardTimeout()), "Never");
    EXPECT_EQ(shown(SettingsScreen::autoLockOptions(), other.autoLockTimeout()), "Never");
    EXPECT_EQ(shown(SettingsScreen::warningDayOptions(), other.warningDays()), "14 days before");
    EXPECT_FALSE(other.showExpenseReminders());
}

TEST_F(SettingsScreenTest, AValueEditedByHandThatNoPickerOffersSelectsNothing) {
    {
        QSettings file(m_folder.filePath(QStringLiteral("preferences.ini")), QSettings::IniFormat);
        file.setValue(QStringLiteral("clipboardClearTimeout"), 45);
        file.setValue(QStringLiteral("expirationWarningDays"), QStringLiteral("soon"));
    }
    QtPreferenceStore reopened(m_folder.filePath(QStringLiteral("preferences.ini")));
    const SettingsScreen screen(reopened, m_auth);
    EXPECT_EQ(screen.clipboardTimeout(), 45.0);
    EXPECT_EQ(shown(SettingsScreen::clipboardOptions(), screen.clipboardTimeout()), "(none)");
    EXPECT_EQ(shown(SettingsScreen::warningDayOptions(), screen.warningDays()), "3 days before")
        << "text where a number belongs reads as absent";
}

TEST_F(SettingsScreenTest, TheCurrencyIsStoredAppliedToEveryAmountAndReadBackAtTheNextStart) {
    struct DefaultCurrency {
        ~DefaultCurrency() { setVaultCurrency(defaultCurrency); }
    } restore;
    SettingsScreen screen(m_preferences, m_auth);
    EXPECT_EQ(screen.currency(), "USD");
    EXPECT_FALSE(screen.setCurrency("EURO"));
    EXPECT_FALSE(fileText().contains(QStringLiteral("currency")));
    EXPECT_TRUE(screen.setCurrency("EUR"));
    EXPECT_TRUE(fileHasLine(QStringLiteral("currency=EUR"))) << fileText().toStdString();
    EXPECT_EQ(currencyFormatted(money("15"), "en_US", CurrencyDigits::all), "€15.00");

    // The next start: the default until the stored code is applied, then the stored one.
    setVaultCurrency(defaultCurrency);
    QtPreferenceStore reopened(m_folder.filePath(QStringLiteral("preferences.ini")));
    EXPECT_EQ(SettingsScreen(reopened, m_auth).currency(), "EUR");
    SettingsScreen::applyCurrency(reopened);
    EXPECT_EQ(vaultCurrency(), "EUR");

    // A code edited by hand that is no currency reads as the default, and is applied as it.
    reopened.setStringValue(SettingsScreen::Key::currency, "ZZZ");
    EXPECT_EQ(SettingsScreen(reopened, m_auth).currency(), "USD");
    SettingsScreen::applyCurrency(reopened);
    EXPECT_EQ(vaultCurrency(), "USD");
}

TEST_F(SettingsScreenTest, WithoutAFingerprintReaderThereIsNoBiometricsRow) {
    connectAuthentication(); // real PAM, and an fprintd probe that finds no reader
    const SettingsScreen screen(m_preferences, m_auth);
    EXPECT_FALSE(screen.showsBiometricsRow());
    EXPECT_EQ(screen.authenticationText(),
              "Vorlane uses your system's authentication (Biometrics + password) to protect "
              "your vault.");
}

} // namespace
} // namespace vorlane::testing
