// SPDX-License-Identifier: GPL-3.0-or-later
// Automatic backups on the real vault, keyring and backup file, with a notification service of the
// tests' own on the run's private bus; only time is manual. When one is due (switched on, folder,
// password, a change since the last, once a calendar day), what the folder keeps, how a failure is
// told, and what survives a restart.

#include "backup/AutomaticBackup.h"

#include "BackupScheduler.h"
#include "DesktopNotificationCenter.h"
#include "NotificationServerProcess.h"
#include "ReminderSchedule.h"
#include "ScreenFixture.h"
#include "backup/BackupFile.h"
#include "backup/BackupRotation.h"
#include "model/Organization.h"

#include <QDir>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace vorlane::testing {
namespace {

using namespace std::chrono;
namespace fs = std::filesystem;

constexpr const char* backupPassword = "lantern-orchard-tuesday-42";

class AutomaticBackupTest : public ScreenFixture {
protected:
    AutomaticBackupTest() { fs::create_directory(m_backupFolder); }

    // Switched on into `folder` with the password stored.
    void configure(AutomaticBackup& backups, const std::string& folder) {
        backups.setSettings({.enabled = true, .folder = folder, .keepCount = 10});
        ASSERT_TRUE(backups.setPassword(backupPassword));
    }

    // Waits for the sealing thread's result to come back to the main loop.
    bool finished(const AutomaticBackup& backups) {
        return waitFor([&] {
            m_timers.runPosted();
            return !backups.isRunning();
        });
    }

    // The backups in the folder, newest first.
    std::vector<std::string> backupNames() const {
        auto names = BackupRotation::backupsIn(m_backupFolder);
        EXPECT_TRUE(names.ok());
        return names ? names.value() : std::vector<std::string>{};
    }

    BackupContents opened(const std::string& name) const {
        std::string bytes;
        EXPECT_EQ(BackupFile::read(m_backupFolder + "/" + name, bytes), std::nullopt);
        auto contents = BackupFile::open(bytes, backupPassword);
        EXPECT_TRUE(contents.ok()) << (contents ? std::string() : contents.error());
        return contents ? contents.value() : BackupContents{};
    }

    void advanceDays(int days) { m_clock.advance(hours(24 * days)); }

    std::string m_backupFolder = m_folder.filePath(QStringLiteral("backups")).toStdString();
    NotificationServerProcess m_server;
    DesktopNotificationCenter m_center{
        ReminderSchedule::pathBeside(
            m_folder.filePath(QStringLiteral("vault.sqlite")).toStdString()),
        QDBusConnection::sessionBus(), m_clock};
};

TEST_F(AutomaticBackupTest, DueOnceADayOnlyAfterAChangeAndOnlyWithAFolderAndAPassword) {
    Organization& acme = addOrganization("Acme");
    ServiceRecord& site = addService(acme, "acme.com", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    ASSERT_TRUE(store().setPassword("hunter2-site", site));
    store().save();

    AutomaticBackup backups(store(), m_preferences, m_calendar, m_timers, m_center);
    EXPECT_FALSE(backups.isDue()) << "off until switched on";
    backups.setSettings({.enabled = true, .folder = {}, .keepCount = 10});
    EXPECT_FALSE(backups.isDue()) << "no folder";
    backups.setSettings({.enabled = true, .folder = m_backupFolder, .keepCount = 10});
    EXPECT_FALSE(backups.isDue()) << "no password";
    ASSERT_TRUE(backups.setPassword(backupPassword));
    EXPECT_EQ(m_keychain.readData(AutomaticBackup::passwordAccount),
              SecretBytes(backupPassword, backupPassword + std::strlen(backupPassword)))
        << "the password is in the secret store";
    backups.setSettings({.enabled = false, .folder = m_backupFolder, .keepCount = 10});
    EXPECT_FALSE(backups.isDue()) << "switched off again";
    backups.setSettings({.enabled = true, .folder = m_backupFolder, .keepCount = 10});
    ASSERT_TRUE(backups.isDue()) << "never backed up";

    ASSERT_TRUE(backups.backUpIfDue());
    EXPECT_TRUE(backups.isRunning());
    EXPECT_FALSE(backups.isDue()) << "not while one runs";
    ASSERT_TRUE(finished(backups));
    ASSERT_EQ(backupNames(), std::vector<std::string>{"Vorlane-Backup-2026-03-10.vorlanebackup"});
    const BackupContents first = opened(backupNames()[0]);
    ASSERT_EQ(first.services.size(), 1U);
    EXPECT_EQ(first.services[0].record.title, "acme.com");
    EXPECT_EQ(first.secrets.at(site.secretKeychainID), "hunter2-site");
    EXPECT_EQ(first.secrets.count(std::string(AutomaticBackup::passwordAccount)), 0U)
        << "the backup password is not backed up with the vault";
    const auto mode = fs::status(m_backupFolder + "/" + backupNames()[0]).permissions();
    EXPECT_EQ(mode & fs::perms::all, fs::perms::owner_read | fs::perms::owner_write);

    // Later the same day, after a change: once a day only.
    m_clock.advance(hours(5));
    addService(acme, "shop.acme.com");
    EXPECT_FALSE(backups.isDue());
    EXPECT_FALSE(backups.backUpIfDue());
    // The next day: the change made yesterday is backed up.
    advanceDays(1);
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backupNames().front(), "Vorlane-Backup-2026-03-11.vorlanebackup");
    EXPECT_EQ(opened(backupNames().front()).services.size(), 2U);
    // A day without a change: nothing new to keep.
    advanceDays(1);
    EXPECT_FALSE(backups.isDue());
    // A change that came while the backup was being written is not lost: it is due again.
    addService(acme, "mail.acme.com");
    ASSERT_TRUE(backups.backUpIfDue());
    addService(acme, "cdn.acme.com");
    ASSERT_TRUE(finished(backups));
    advanceDays(1);
    EXPECT_TRUE(backups.isDue());

    // "Back Up Now" needs no change and counts as the day's backup.
    ASSERT_TRUE(backups.backUpNow());
    EXPECT_FALSE(backups.backUpNow()) << "one at a time";
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backupNames().front(), "Vorlane-Backup-2026-03-13.vorlanebackup");
    EXPECT_FALSE(backups.isDue());
    EXPECT_EQ(opened(backupNames().front()).services.size(), 4U);
}

TEST_F(AutomaticBackupTest, TheFolderKeepsTheNewestBackupsAndEveryOtherFileStaysPut) {
    const auto touch = [this](const std::string& name) {
        std::ofstream(m_backupFolder + "/" + name) << "older";
    };
    for (const char* day : {"2026-03-01", "2026-02-27", "2026-03-09", "2025-12-31", "2026-03-05"}) {
        touch(std::string("Vorlane-Backup-") + day + ".vorlanebackup");
    }
    // Not backups by their names, a link and a folder named like one: never removed.
    const std::vector<std::string> others{
        "notes.txt", "Vorlane-Backup-2020-01-01.vorlanebackup.part",
        "Vorlane-Backup-latest.vorlanebackup", "vorlane-backup-2020-01-02.vorlanebackup",
        "Vorlane-Backup-2020-1-03.vorlanebackup"};
    for (const std::string& name : others) {
        touch(name);
    }
    fs::create_directory(m_backupFolder + "/Vorlane-Backup-2020-01-04.vorlanebackup");
    fs::create_symlink(m_backupFolder + "/notes.txt",
                       m_backupFolder + "/Vorlane-Backup-2020-01-05.vorlanebackup");

    AutomaticBackup backups(store(), m_preferences, m_calendar, m_timers, m_center);
    configure(backups, m_backupFolder);
    backups.setSettings({.enabled = true, .folder = m_backupFolder, .keepCount = 3});
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backupNames(), (std::vector<std::string>{"Vorlane-Backup-2026-03-10.vorlanebackup",
                                                       "Vorlane-Backup-2026-03-09.vorlanebackup",
                                                       "Vorlane-Backup-2026-03-05.vorlanebackup"}));
    EXPECT_EQ(backups.lastBackup()->error, std::nullopt);
    for (const std::string& name : others) {
        EXPECT_TRUE(fs::exists(m_backupFolder + "/" + name)) << name;
    }
    EXPECT_TRUE(fs::is_directory(m_backupFolder + "/Vorlane-Backup-2020-01-04.vorlanebackup"));
    EXPECT_TRUE(fs::is_symlink(m_backupFolder + "/Vorlane-Backup-2020-01-05.vorlanebackup"));

    // Fewer kept from the next backup on; the count stays within its range whatever is stored.
    backups.setSettings({.enabled = true, .folder = m_backupFolder, .keepCount = 1});
    advanceDays(1);
    addOrganization("Globex");
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backupNames(), std::vector<std::string>{"Vorlane-Backup-2026-03-11.vorlanebackup"});
    EXPECT_EQ(AutomaticBackupSettings::read(m_preferences).keepCount, 1);
    m_preferences.setIntValue(AutomaticBackupSettings::Key::keepCount, 0);
    EXPECT_EQ(backups.settings().keepCount, AutomaticBackupSettings::minimumKeepCount);
    m_preferences.setIntValue(AutomaticBackupSettings::Key::keepCount, 100000);
    EXPECT_EQ(backups.settings().keepCount, AutomaticBackupSettings::maximumKeepCount);
    m_preferences.setIntValue(AutomaticBackupSettings::Key::keepCount, 25);
    EXPECT_EQ(backups.settings().keepCount, 25);
}

TEST_F(AutomaticBackupTest, AFailureIsNotifiedOnceUntilABackupSucceedsOrTheReasonChanges) {
    ASSERT_TRUE(m_server.ready());
    addOrganization("Acme");
    const std::string folder = m_backupFolder + "/stick"; // not plugged in yet
    AutomaticBackup backups(store(), m_preferences, m_calendar, m_timers, m_center);
    configure(backups, folder);
    const auto notified = [this](std::size_t count) {
        m_center.flush(); // the notification is sent on the centre's worker
        return m_server.shown().size() == count;
    };

    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    ASSERT_TRUE(backups.lastBackup()->error.has_value());
    const std::string missing = *backups.lastBackup()->error;
    ASSERT_TRUE(notified(1U));
    EXPECT_EQ(m_server.shown()[0].value("summary").toString(),
              QString::fromUtf8(AutomaticBackup::failureTitle.data(),
                                static_cast<qsizetype>(AutomaticBackup::failureTitle.size())));
    EXPECT_EQ(m_server.shown()[0].value("body").toString(),
              QString::fromStdString("Vorlane could not back up your vault into " + folder + ": " +
                                     missing));
    EXPECT_FALSE(fs::exists(folder)) << "nothing made in its place";

    // Tried again an hour later (still due: nothing succeeded today), and the same reason is not
    // shown again; nor is the failure of a backup the person asked for.
    m_clock.advance(hours(1));
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    ASSERT_TRUE(backups.backUpNow());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backups.lastBackup()->error, missing);
    EXPECT_TRUE(notified(1U));

    // Another reason is news.
    std::ofstream(folder) << "a file where the folder should be";
    m_clock.advance(hours(1));
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    ASSERT_NE(backups.lastBackup()->error, missing);
    EXPECT_TRUE(notified(2U));

    // Plugged in: it succeeds, silently; the same failure after that is told again.
    fs::remove(folder);
    fs::create_directory(folder);
    m_clock.advance(hours(1));
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backups.lastBackup()->error, std::nullopt);
    EXPECT_TRUE(notified(2U));
    fs::remove_all(folder);
    advanceDays(1);
    addOrganization("Globex");
    ASSERT_TRUE(backups.backUpIfDue());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backups.lastBackup()->error, missing);
    EXPECT_TRUE(notified(3U));
}

TEST_F(AutomaticBackupTest, TheLastResultTheChangeMarkAndTheToldReasonOutliveARestart) {
    ASSERT_TRUE(m_server.ready());
    const QString preferencesFile = m_folder.filePath(QStringLiteral("restart.ini"));
    const std::string gone = m_backupFolder + "/gone";
    const Instant succeeded = m_clock.now();
    {
        QtPreferenceStore preferences(preferencesFile);
        AutomaticBackup backups(store(), preferences, m_calendar, m_timers, m_center);
        configure(backups, m_backupFolder);
        ASSERT_TRUE(backups.backUpIfDue());
        ASSERT_TRUE(finished(backups));
        backups.setSettings({.enabled = true, .folder = gone, .keepCount = 4});
        advanceDays(1);
        addOrganization("Acme");
        ASSERT_TRUE(backups.backUpIfDue());
        ASSERT_TRUE(finished(backups));
        m_center.flush();
        ASSERT_EQ(m_server.shown().size(), 1U);
    }
    const Instant failed = succeeded + hours(24);
    {
        QtPreferenceStore preferences(preferencesFile);
        AutomaticBackup backups(store(), preferences, m_calendar, m_timers, m_center);
        EXPECT_EQ(backups.settings(),
                  (AutomaticBackupSettings{.enabled = true, .folder = gone, .keepCount = 4}));
        EXPECT_TRUE(backups.hasPassword());
        const std::optional<LastBackup> last = backups.lastBackup();
        ASSERT_TRUE(last.has_value());
        EXPECT_EQ(last->at, failed);
        EXPECT_TRUE(last->error.has_value());
        EXPECT_EQ(last->succeededAt, succeeded);
        // The change before the restart is still to be backed up; the reason was told already.
        m_clock.advance(hours(1));
        ASSERT_TRUE(backups.backUpIfDue());
        ASSERT_TRUE(finished(backups));
        m_center.flush();
        EXPECT_EQ(m_server.shown().size(), 1U);
        backups.setSettings({.enabled = true, .folder = m_backupFolder, .keepCount = 4});
        ASSERT_TRUE(backups.backUpIfDue());
        ASSERT_TRUE(finished(backups));
        EXPECT_EQ(backups.lastBackup()->error, std::nullopt);
    }
    // Backed up and unchanged since: not due the next day, after another restart.
    QtPreferenceStore preferences(preferencesFile);
    const AutomaticBackup backups(store(), preferences, m_calendar, m_timers, m_center);
    advanceDays(1);
    EXPECT_FALSE(backups.isDue());
    EXPECT_EQ(backups.lastBackup()->succeededAt, failed + hours(1));
}

TEST_F(AutomaticBackupTest, TheSchedulerLooksAMinuteAfterStartHourlyAndSoonAfterAChange) {
    addOrganization("Acme");
    AutomaticBackup backups(store(), m_preferences, m_calendar, m_timers, m_center);
    configure(backups, m_backupFolder);
    const BackupScheduler scheduler(backups, store(), m_timers, m_clock);
    m_timers.advance(BackupScheduler::startDelay - seconds(1));
    EXPECT_FALSE(backups.isRunning());
    m_timers.advance(seconds(1));
    EXPECT_TRUE(backups.isRunning()) << "a minute after start";
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backupNames().size(), 1U);

    // Tomorrow morning (the hourly look finds nothing changed), then a change: backed up within
    // a few minutes, not at the next hour.
    m_timers.advance(hours(20));
    EXPECT_EQ(backupNames().size(), 1U);
    addOrganization("Globex");
    m_timers.advance(BackupScheduler::changeDelay);
    EXPECT_TRUE(backups.isRunning());
    ASSERT_TRUE(finished(backups));
    EXPECT_EQ(backupNames().front(), "Vorlane-Backup-2026-03-11.vorlanebackup");
}

} // namespace
} // namespace vorlane::testing
