// SPDX-License-Identifier: GPL-3.0-or-later
// Settings → Backups: the screen model's texts and states, and the tab driven from the keyboard
// offscreen on the real vault and keyring until the scheduler writes a backup that opens with the
// password typed in its sheet. Only time is manual (and the folder dialog's answer).

#include "BackupScheduler.h"
#include "DesktopNotificationCenter.h"
#include "ReminderSchedule.h"
#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "backup/AutomaticBackup.h"
#include "backup/BackupFile.h"
#include "backup/BackupPassword.h"
#include "model/Organization.h"
#include "screens/BackupPasswordSheet.h"
#include "screens/BackupSettingsScreen.h"
#include "screens/BackupSettingsSection.h"
#include "screens/SettingsView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>

#include <filesystem>

namespace vorlane::testing {
namespace {

using namespace std::chrono;
namespace fs = std::filesystem;

constexpr const char* backupPassword = "lantern-orchard-tuesday-42";

class BackupSettingsTest : public ScreenFixture {
protected:
    BackupSettingsTest() { fs::create_directory(m_backupFolder); }

    bool finished() {
        return waitFor([this] {
            m_timers.runPosted();
            return !m_backups.isRunning();
        });
    }

    std::string m_backupFolder = m_folder.filePath(QStringLiteral("backups")).toStdString();
    DesktopNotificationCenter m_center{
        ReminderSchedule::pathBeside(
            m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString()),
        QDBusConnection::sessionBus(), m_clock};
    AutomaticBackup m_backups{store(), m_preferences, m_calendar, m_timers, m_center};
};

TEST_F(BackupSettingsTest, TheModelSaysWhatIsMissingWhatIsKeptAndHowTheLastBackupWent) {
    BackupSettingsScreen screen(m_backups, m_calendar);
    EXPECT_EQ(screen.folderText(), "No folder chosen");
    EXPECT_EQ(screen.passwordText(), "Not set");
    EXPECT_EQ(screen.passwordButtonTitle(), "Set Password\xE2\x80\xA6");
    EXPECT_EQ(screen.lastBackupText(), "No backup yet");
    EXPECT_EQ(screen.keepCount(), 10);
    EXPECT_EQ(screen.missingText(), std::nullopt) << "nothing missing while switched off";
    EXPECT_FALSE(screen.backUpNowEnabled());

    screen.setBacksUpAutomatically(true);
    EXPECT_TRUE(m_backups.settings().enabled);
    EXPECT_EQ(screen.missingText(), "Choose a folder and set a password to start backing up.");
    screen.setFolder({}); // the dialog cancelled
    EXPECT_EQ(screen.folderText(), "No folder chosen");
    screen.setFolder(m_backupFolder);
    EXPECT_EQ(screen.folderText(), m_backupFolder);
    EXPECT_EQ(screen.missingText(), "Set a password to start backing up.");
    EXPECT_FALSE(screen.backUpNowEnabled());

    // The backup password's rules, and nothing stored while they are not met.
    EXPECT_EQ(screen.setPassword("short-one", "short-one"), BackupPassword::tooShort);
    EXPECT_EQ(screen.setPassword("password1234", "password1234"), BackupPassword::tooWeak);
    EXPECT_EQ(screen.setPassword(backupPassword, "lantern-orchard-tuesday-43"),
              BackupPassword::notRepeated);
    EXPECT_EQ(m_keychain.readData(AutomaticBackup::passwordAccount), std::nullopt);
    EXPECT_EQ(screen.passwordText(), "Not set");
    EXPECT_EQ(screen.setPassword(backupPassword, backupPassword), std::nullopt);
    EXPECT_EQ(screen.passwordText(), "Kept in the secret store");
    EXPECT_EQ(screen.passwordButtonTitle(), "Change Password\xE2\x80\xA6");
    EXPECT_EQ(screen.missingText(), std::nullopt);
    screen.setBacksUpAutomatically(false);
    screen.setFolder({});
    EXPECT_EQ(m_backups.settings().folder, m_backupFolder) << "a cancelled dialog keeps it";
    EXPECT_EQ(screen.missingText(), std::nullopt);

    screen.setKeepCount(0);
    EXPECT_EQ(screen.keepCount(), BackupSettingsScreen::minimumKeepCount());
    screen.setKeepCount(12);
    EXPECT_EQ(m_backups.settings().keepCount, 12);

    // "Back Up Now" works switched off too, and says how it went.
    ASSERT_TRUE(screen.backUpNowEnabled());
    screen.backUpNow();
    EXPECT_EQ(screen.lastBackupText(), "Backing up\xE2\x80\xA6");
    EXPECT_FALSE(screen.backUpNowEnabled());
    ASSERT_TRUE(finished());
    // 17:00 UTC is 1 PM in New York (summer time since 8 March), written for the person.
    const std::string succeeded = screen.lastBackupText();
    EXPECT_TRUE(succeeded.starts_with("Last backup: Mar 10, 2026, 1:00")) << succeeded;
    EXPECT_TRUE(succeeded.ends_with("PM \xE2\x80\x94 Succeeded")) << succeeded;
    EXPECT_FALSE(screen.lastBackupFailed());

    screen.setFolder(m_backupFolder + "/unplugged");
    m_clock.advance(minutes(30));
    screen.backUpNow();
    ASSERT_TRUE(finished());
    const std::string failed = screen.lastBackupText();
    EXPECT_TRUE(failed.starts_with("Last backup: Mar 10, 2026, 1:30")) << failed;
    EXPECT_NE(failed.find("PM \xE2\x80\x94 Failed: "), std::string::npos) << failed;
    EXPECT_TRUE(failed.ends_with(*m_backups.lastBackup()->error)) << failed;
    EXPECT_TRUE(screen.lastBackupFailed());
}

TEST_F(BackupSettingsTest, SwitchedOnFromTheKeyboardABackupAppearsThatOpensWithItsPassword) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& site = addService(acme, "acme.com", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    ASSERT_TRUE(store().setPassword("hunter2-site", site));
    store().save();
    const BackupScheduler scheduler(m_backups, store(), m_timers, m_clock);
    context().backups = &m_backups;
    SettingsView view(context());
    view.show();
    int tab = -1;
    for (int i = 0; i < view.count(); ++i) {
        tab = view.tabText(i) == QStringLiteral("Backups") ? i : tab;
    }
    ASSERT_GE(tab, 0) << "a Backups tab";
    view.setCurrentIndex(tab);
    auto* section = view.findChild<BackupSettingsSection*>();
    ASSERT_NE(section, nullptr);
    section->setFolderChooser([this](const QString& current) -> std::optional<QString> {
        EXPECT_TRUE(current.isEmpty()) << "none chosen yet";
        return QString::fromStdString(m_backupFolder);
    });
    // Every control is named for a screen reader: by its own text, or by an accessible name.
    for (const QAbstractButton* button : section->findChildren<QAbstractButton*>()) {
        EXPECT_FALSE(button->text().isEmpty() && button->accessibleName().isEmpty());
    }
    EXPECT_EQ(section->keepCountBox()->accessibleName(), QStringLiteral("Backups to keep"));
    EXPECT_FALSE(section->backUpNowButton()->isEnabled());
    EXPECT_EQ(section->lastBackupLabel()->text(), QStringLiteral("No backup yet"));

    section->automaticToggle()->setFocus();
    QTest::keyClick(section->automaticToggle(), Qt::Key_Space);
    EXPECT_TRUE(m_backups.settings().enabled);
    EXPECT_TRUE(showsLabel(
        *section, QStringLiteral("Choose a folder and set a password to start backing up.")));
    section->chooseFolderButton()->setFocus();
    QTest::keyClick(section->chooseFolderButton(), Qt::Key_Space);
    EXPECT_TRUE(showsLabel(*section, QString::fromStdString(m_backupFolder)));
    section->keepCountBox()->setFocus();
    QTest::keyClick(section->keepCountBox(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(section->keepCountBox(), QStringLiteral("5"));
    EXPECT_EQ(m_backups.settings().keepCount, 5);

    // The password sheet refuses two different typings and keeps them; then saves.
    section->passwordButton()->setFocus();
    QTest::keyClick(section->passwordButton(), Qt::Key_Space);
    BackupPasswordSheet* sheet = nullptr;
    ASSERT_TRUE(waitFor([&] {
        sheet = view.window()->findChild<BackupPasswordSheet*>();
        return sheet != nullptr && sheet->isVisible();
    }));
    ASSERT_EQ(sheet->focusWidget(), sheet->passwordField()) << "the hand goes to the first field";
    QTest::keyClicks(sheet->focusWidget(), QString::fromLatin1(backupPassword));
    QTest::keyClick(sheet->focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(sheet->focusWidget(), sheet->repeatField()) << "Tab goes on to the second field";
    QTest::keyClicks(sheet->repeatField(), QStringLiteral("lantern-orchard"));
    QTest::keyClick(sheet->repeatField(), Qt::Key_Return);
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_EQ(sheet->problemLabel()->text(), QString::fromLatin1(BackupPassword::notRepeated));
    EXPECT_EQ(sheet->passwordField()->text(), QString::fromLatin1(backupPassword));
    EXPECT_FALSE(m_backups.hasPassword());
    QTest::keyClicks(sheet->repeatField(), QStringLiteral("-tuesday-42"));
    QTest::keyClick(sheet->repeatField(), Qt::Key_Return);
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_TRUE(showsLabel(*section, QStringLiteral("Kept in the secret store")));
    EXPECT_EQ(section->passwordButton()->text(), QStringLiteral("Change Password\u2026"));
    EXPECT_TRUE(section->backUpNowButton()->isEnabled());

    // The scheduler follows the settings: a backup within a few minutes, shown as it runs.
    m_timers.advance(BackupScheduler::changeDelay);
    ASSERT_TRUE(m_backups.isRunning());
    EXPECT_EQ(section->lastBackupLabel()->text(), QStringLiteral("Backing up\u2026"));
    EXPECT_FALSE(section->backUpNowButton()->isEnabled());
    ASSERT_TRUE(finished());
    EXPECT_TRUE(section->lastBackupLabel()->text().endsWith(QStringLiteral("\u2014 Succeeded")))
        << section->lastBackupLabel()->text().toStdString();
    EXPECT_TRUE(section->backUpNowButton()->isEnabled());

    std::string bytes;
    ASSERT_EQ(BackupFile::read(m_backupFolder + "/Vorlane-Backup-2026-03-10.vorlanebackup", bytes),
              std::nullopt);
    const auto contents = BackupFile::open(bytes, backupPassword);
    ASSERT_TRUE(contents.ok()) << contents.error();
    ASSERT_EQ(contents.value().services.size(), 1U);
    EXPECT_EQ(contents.value().services[0].record.title, "acme.com");
    EXPECT_EQ(contents.value().secrets.at(site.secretKeychainID), "hunter2-site");
}

} // namespace
} // namespace vorlane::testing
