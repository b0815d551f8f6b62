// SPDX-License-Identifier: GPL-3.0-or-later
// The back-up and restore sheets driven from the keyboard, with real PAM, the real keyring and
// the real key derivation: a vault backed up, deleted and restored shows its passwords again.
#include "screens/BackupSheet.h"

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "backup/BackupFile.h"
#include "backup/BackupSnapshot.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/RestoreSheet.h"
#include "store/DemoVault.h"

#include <QLineEdit>
#include <QProgressBar>

#include <filesystem>
#include <map>

namespace vorlane::testing {
namespace {

constexpr const char* backupPassword = "violet tractor harbour 1947";

class BackupSheetTest : public ScreenFixture {
protected:
    std::string pathIn(const char* name) const {
        return m_folder.filePath(QString::fromLatin1(name)).toStdString();
    }

    ServiceRecord& addWithPassword(Organization& owner, const std::string& title,
                                   const std::string& password) {
        ServiceRecord& service = addService(owner, title, [](ServiceRecord& s) {
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        });
        EXPECT_TRUE(store().setPassword(password, service));
        return service;
    }

    static QString labelText(QWidget& sheet, const QString& name) {
        auto* label = childNamed<QLabel>(sheet, name);
        return label != nullptr && label->isVisible() ? label->text() : QString();
    }

    // Keys go where a person's would: to the widget that has the focus in the sheet.
    static void type(QWidget& sheet, const QString& text) {
        ASSERT_NE(sheet.focusWidget(), nullptr);
        QTest::keyClicks(sheet.focusWidget(), text);
    }
    static void press(QWidget& sheet, Qt::Key key) {
        QTest::keyClick(sheet.focusWidget() != nullptr ? sheet.focusWidget() : &sheet, key);
    }

    // A back-up sheet answered up to its password step, through real PAM and the keyboard.
    void authenticate(BackupSheet& sheet) {
        connectAuthentication();
        m_person.willType(userPassword);
        sheet.show();
        ASSERT_EQ(sheet.focusWidget(), buttonTitled(sheet, QStringLiteral("Authenticate")));
        press(sheet, Qt::Key_Return);
        ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == BackupFlow::Step::password; }));
        ASSERT_EQ(sheet.focusWidget(),
                  childNamed<QLineEdit>(sheet, QStringLiteral("Backup password")));
    }

    // Types the backup password, Tab past Generate, types it again.
    void typeBothPasswords(BackupSheet& sheet) {
        type(sheet, QString::fromLatin1(backupPassword));
        press(sheet, Qt::Key_Tab);
        press(sheet, Qt::Key_Tab);
        ASSERT_EQ(sheet.focusWidget(),
                  childNamed<QLineEdit>(sheet, QStringLiteral("Repeat backup password")));
        type(sheet, QString::fromLatin1(backupPassword));
    }
};

TEST_F(BackupSheetTest, AVaultBackedUpDeletedAndRestoredShowsItsPasswordsAgain) {
    Organization& acme = addOrganization("Acme Corp");
    addWithPassword(acme, "Mail server", "mail-pw");
    addWithPassword(acme, "Router", "router-pw");
    const std::string path = pathIn("Vorlane-Backup.vorlanebackup");

    {
        BackupSheet sheet(context());
        QString proposed;
        sheet.setFileChooser([&](const QString& proposedPath) {
            proposed = proposedPath;
            return std::optional(QString::fromStdString(path));
        });
        authenticate(sheet);
        EXPECT_EQ(m_person.requests.front().reason, "Authenticate to back up your vault");
        type(sheet, QStringLiteral("too short"));
        EXPECT_EQ(labelText(sheet, QStringLiteral("Backup password problem")),
                  QStringLiteral("A backup password needs at least 12 characters."));
        EXPECT_FALSE(buttonTitled(sheet, QStringLiteral("Back Up\u2026"))->isEnabled());
        childNamed<QLineEdit>(sheet, QStringLiteral("Backup password"))->clear();
        typeBothPasswords(sheet);
        EXPECT_TRUE(labelText(sheet, QStringLiteral("Backup password problem")).isEmpty());
        press(sheet, Qt::Key_Return);
        EXPECT_TRUE(proposed.endsWith(QStringLiteral("/Vorlane-Backup-2026-03-10.vorlanebackup")))
            << proposed.toStdString();
        ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == BackupFlow::Step::done; }));
        EXPECT_EQ(labelText(sheet, QStringLiteral("Summary")),
                  QStringLiteral("Backed up 1 organization and 2 services with 2 secrets."));
        EXPECT_EQ(sheet.focusWidget(), buttonTitled(sheet, QStringLiteral("Done")));
        press(sheet, Qt::Key_Return);
        EXPECT_EQ(sheet.result(), QDialog::Accepted);
    }

    // A reinstalled machine: the vault and the keyring's items are gone.
    store().deleteOrganization(acme);
    ASSERT_EQ(store().countServices(true), 0U);

    RestoreSheet sheet(context());
    sheet.show();
    sheet.chooseFile(QString::fromStdString(path));
    ASSERT_EQ(sheet.flow().step(), RestoreFlow::Step::password);
    ASSERT_EQ(sheet.focusWidget(), childNamed<QLineEdit>(sheet, QStringLiteral("Backup password")));
    type(sheet, QStringLiteral("violet tractor harbour 1948"));
    press(sheet, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !sheet.flow().isOpening(); }));
    EXPECT_EQ(labelText(sheet, QStringLiteral("Password error")),
              QStringLiteral("The password is wrong or the backup is damaged."));
    EXPECT_EQ(store().countServices(true), 0U);
    // The typed password is selected, so that typing again replaces it.
    type(sheet, QString::fromLatin1(backupPassword));
    press(sheet, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == RestoreFlow::Step::summary; }));
    EXPECT_EQ(labelText(sheet, QStringLiteral("Holds")),
              QStringLiteral("1 organization, 2 services, 2 secrets"));
    EXPECT_EQ(labelText(sheet, QStringLiteral("What the restore will do")),
              QStringLiteral("Your vault is empty: everything in the backup will be restored."));
    EXPECT_EQ(sheet.focusWidget(), buttonTitled(sheet, QStringLiteral("Restore")));
    press(sheet, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == RestoreFlow::Step::done; }));
    EXPECT_EQ(labelText(sheet, QStringLiteral("Result")),
              QStringLiteral("Added 3 records, updated 0 and left 0 as they were; wrote 2 secrets "
                             "to the keyring."));
    const std::vector<ServiceRecord*> services = store().fetchAllServices(true);
    ASSERT_EQ(services.size(), 2U);
    EXPECT_EQ(store().getPassword(*services[0]), "mail-pw");
    EXPECT_EQ(store().getPassword(*services[1]), "router-pw");
    press(sheet, Qt::Key_Return);
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
}

// Escape while the key is derived stops the backup and writes nothing; the next attempt works,
// and Escape on the password step closes the sheet.
TEST_F(BackupSheetTest, EscapeWhileSealingWritesNothing) {
    addWithPassword(addOrganization("Acme Corp"), "Mail server", "mail-pw");
    BackupSheet sheet(context());
    std::string path = pathIn("cancelled.vorlanebackup");
    sheet.setFileChooser(
        [&path](const QString&) { return std::optional(QString::fromStdString(path)); });
    authenticate(sheet);
    typeBothPasswords(sheet);
    press(sheet, Qt::Key_Return);
    ASSERT_EQ(sheet.flow().step(), BackupFlow::Step::working);
    EXPECT_TRUE(childNamed<QProgressBar>(sheet, QStringLiteral("Backup progress"))->isVisible());
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_EQ(sheet.flow().step(), BackupFlow::Step::password);
    EXPECT_TRUE(sheet.isVisible());

    const std::string cancelled = path;
    path = pathIn("second.vorlanebackup");
    ASSERT_TRUE(buttonTitled(sheet, QStringLiteral("Back Up\u2026"))->isEnabled())
        << "the passwords are kept";
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Back Up\u2026")), Qt::LeftButton);
    // The first worker's result arrives before the second's and is dropped.
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == BackupFlow::Step::done; }));
    EXPECT_FALSE(std::filesystem::exists(cancelled));
    EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(BackupSheetTest, ARefusedAuthenticationAndAWrongFileAreSaidWhereTheyHappen) {
    connectAuthentication();
    m_person.willCancel();
    BackupSheet backup(context());
    backup.show();
    press(backup, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !backup.flow().isAuthenticating(); }));
    EXPECT_EQ(labelText(backup, QStringLiteral("Authentication error")),
              QStringLiteral("Authentication is required to back up your vault."));
    EXPECT_EQ(backup.flow().step(), BackupFlow::Step::authenticate);
    QTest::keyClick(&backup, Qt::Key_Escape);
    EXPECT_EQ(backup.result(), QDialog::Rejected);

    RestoreSheet restore(context());
    restore.show();
    const std::string notABackup = pathIn("vault.sqlite");
    restore.chooseFile(QString::fromStdString(notABackup));
    EXPECT_EQ(restore.flow().step(), RestoreFlow::Step::chooseFile);
    EXPECT_EQ(labelText(restore, QStringLiteral("Error")),
              QStringLiteral("This file is not a Vorlane backup."));
}

// As on a reinstalled machine: a demo vault of 300 services backed up from the window, the vault
// and its keyring items deleted, and restored from the window; every service has its password
// and API key again, under the same identity.
TEST_F(BackupSheetTest, ADemoVaultOfThreeHundredServicesComesBackWithEverySecret) {
    DemoVault::populate(store(), m_clock.now(), {.services = 300, .withSecrets = true});
    std::map<Uuid, std::pair<std::optional<std::string>, std::optional<std::string>>> secrets;
    for (const ServiceRecord* service : store().fetchAllServices(true)) {
        secrets[service->id] = {store().getPassword(*service), store().getAPIKey(*service)};
    }
    ASSERT_EQ(secrets.size(), 300U);
    const std::string path = pathIn("demo.vorlanebackup");
    {
        BackupSheet sheet(context());
        sheet.setFileChooser(
            [&path](const QString&) { return std::optional(QString::fromStdString(path)); });
        authenticate(sheet);
        typeBothPasswords(sheet);
        press(sheet, Qt::Key_Return);
        ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == BackupFlow::Step::done; }, 60000));
        EXPECT_TRUE(labelText(sheet, QStringLiteral("Summary"))
                        .contains(QStringLiteral(" and 300 services with ")));
    }
    for (Organization* organization : store().fetchOrganizations(true)) {
        store().deleteOrganization(*organization);
    }
    ASSERT_EQ(store().countServices(true), 0U);

    RestoreSheet sheet(context());
    sheet.show();
    sheet.chooseFile(QString::fromStdString(path));
    type(sheet, QString::fromLatin1(backupPassword));
    press(sheet, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == RestoreFlow::Step::summary; }));
    press(sheet, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == RestoreFlow::Step::done; }, 60000));
    EXPECT_TRUE(sheet.flow().restored()) << sheet.flow().resultText();
    const std::vector<ServiceRecord*> restored = store().fetchAllServices(true);
    ASSERT_EQ(restored.size(), 300U);
    std::size_t withPassword = 0;
    for (const ServiceRecord* service : restored) {
        const auto found = secrets.find(service->id);
        ASSERT_NE(found, secrets.end()) << service->title;
        EXPECT_EQ(store().getPassword(*service), found->second.first) << service->title;
        EXPECT_EQ(store().getAPIKey(*service), found->second.second) << service->title;
        withPassword += found->second.first.has_value() ? 1 : 0;
    }
    EXPECT_GT(withPassword, 200U) << "the demo gives most services a password";
}

// Escape while the restore runs stops it before the vault changes and says so; the next Escape
// closes the sheet.
TEST_F(BackupSheetTest, EscapeDuringTheRestoreLeavesTheVaultAsItWas) {
    Organization& acme = addOrganization("Acme Corp");
    addWithPassword(acme, "Mail server", "mail-pw");
    const std::string path = pathIn("escape.vorlanebackup");
    const std::optional<BackupContents> contents = BackupSnapshot::take(store(), m_clock.now());
    ASSERT_TRUE(contents.has_value());
    ASSERT_FALSE(BackupFile::write(path, *contents, backupPassword,
                                   {.memoryKiB = 64, .passes = 1, .lanes = 1}));
    store().deleteOrganization(acme);

    RestoreSheet sheet(context());
    sheet.show();
    sheet.chooseFile(QString::fromStdString(path));
    type(sheet, QString::fromLatin1(backupPassword));
    press(sheet, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == RestoreFlow::Step::summary; }));
    press(sheet, Qt::Key_Return);
    ASSERT_EQ(sheet.flow().step(), RestoreFlow::Step::restoring);
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_EQ(sheet.flow().step(), RestoreFlow::Step::done);
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_EQ(
        labelText(sheet, QStringLiteral("Result")),
        QStringLiteral("The restore was cancelled. Your vault and keyring are as they were."));
    QTest::qWait(50); // no turn of the loop restores anything more
    EXPECT_EQ(store().countServices(true), 0U);
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(sheet.result(), QDialog::Rejected);
}

} // namespace
} // namespace vorlane::testing
