// SPDX-License-Identifier: GPL-3.0-or-later
// Walks the whole window over a vault and writes a PNG of every screen and sheet, in the light or
// the dark palette, so that a person can look at what the program shows without clicking through
// it. Not a test: it asserts nothing. It works on a copy of the vault (OUT_DIR/tour.sqlite),
// because the smart-paste step saves a credential. Runs on the offscreen platform:
//
//   vorlane_screenshot_tour VAULT OUT_DIR [light|dark]

#include "DesktopNotificationCenter.h"
#include "LibsecretBackend.h"
#include "MainWindow.h"
#include "PamAuthenticator.h"
#include "PamTestEnvironment.h"
#include "QtClipboard.h"
#include "QtPreferenceStore.h"
#include "QtTimers.h"
#include "ScriptedPerson.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "backup/AutomaticBackup.h"
#include "backup/BackupFile.h"
#include "backup/BackupSnapshot.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/BackupPasswordSheet.h"
#include "screens/BackupSettingsSection.h"
#include "screens/BackupSheet.h"
#include "screens/CostReportSheet.h"
#include "screens/ExpenseView.h"
#include "screens/ImportSheet.h"
#include "screens/PasswordHealthView.h"
#include "screens/RestoreSheet.h"
#include "screens/SettingsScreen.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "util/SystemClock.h"
#include "util/UserCalendar.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDBusConnection>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTest>

#include <cstdio>

namespace {

using namespace vorlane;

QPalette darkPalette() {
    QPalette palette;
    const QColor window(0x2b, 0x2b, 0x2e), base(0x1e, 0x1e, 0x20), text(0xe8, 0xe8, 0xea);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0xa0));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, window);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::red);
    palette.setColor(QPalette::Mid, QColor(0x50, 0x50, 0x55));
    palette.setColor(QPalette::Midlight, QColor(0x3a, 0x3a, 0x3e));
    palette.setColor(QPalette::Dark, QColor(0x18, 0x18, 0x1a));
    palette.setColor(QPalette::Light, QColor(0x45, 0x45, 0x4a));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7a, 0xed));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6a, 0xa8, 0xff));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x70, 0x70, 0x75));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x70, 0x70, 0x75));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x70, 0x70, 0x75));
    return palette;
}

void settle() {
    for (int i = 0; i < 5; ++i) {
        QApplication::processEvents();
        QTest::qWait(40);
    }
}

QPushButton* button(QWidget* parent, const QString& text) {
    for (QPushButton* candidate : parent->findChildren<QPushButton*>()) {
        if (candidate->text() == text && candidate->isVisible()) {
            return candidate;
        }
    }
    return nullptr;
}

void save(QWidget* widget, const QString& folder, const QString& name) {
    settle();
    const QString path = folder + u'/' + name + QStringLiteral(".png");
    widget->grab().save(path);
    std::printf("%s\n", qPrintable(path));
}

// Pastes a welcome mail, parses it, picks the first organization and saves, with a picture of
// each step.
void walkSmartPaste(QDialog* sheet, const QString& folder) {
    for (QPlainTextEdit* editor : sheet->findChildren<QPlainTextEdit*>()) {
        if (editor->accessibleName() == QStringLiteral("Pasted text")) {
            editor->setPlainText(QStringLiteral(
                "Hello Maria,\n\nYour new VPS is ready.\n\nServer IP: 203.0.113.42\n"
                "Root password: Vx7#qLm2pT\nBackup password: Bk-77f3-zz91\n"
                "API token: tok_live_8d7Hq2Lx\nPort: 2222\n"
                "Two-factor: otpauth://totp/Northwind:maria?secret=JBSWY3DPEHPK3PXP\n"
                "Control panel: https://my.northwind.example/clientarea\n"
                "Provider: Northwind Cloud\n\nYour next invoice is due on 2026-04-15.\n"));
        }
    }
    save(sheet, folder, QStringLiteral("sheet-smart-paste-text"));
    if (QPushButton* parse = button(sheet, QStringLiteral("Parse"))) {
        parse->click();
    }
    if (auto* organizations = sheet->findChild<QComboBox*>();
        organizations != nullptr && organizations->count() > 1) {
        organizations->setCurrentIndex(1);
        Q_EMIT organizations->activated(1);
    }
    save(sheet, folder, QStringLiteral("sheet-smart-paste-review"));
    if (QPushButton* saveButton = button(sheet, QStringLiteral("Save Credential"))) {
        saveButton->click();
    }
    save(sheet, folder, QStringLiteral("sheet-smart-paste-done"));
}

// Ticks every service, turns secrets on, types a guessable export password, and pictures the
// configure and confirm steps.
void walkShare(QDialog* sheet, const QString& folder) {
    if (QPushButton* all = button(sheet, QStringLiteral("Select All"))) {
        all->click();
    }
    save(sheet, folder, QStringLiteral("sheet-share-select"));
    if (QPushButton* next = button(sheet, QStringLiteral("Next"))) {
        next->click();
    }
    for (QCheckBox* box : sheet->findChildren<QCheckBox*>()) {
        if (box->text().startsWith(QStringLiteral("Include secrets"))) {
            box->setChecked(true);
        }
    }
    for (QLineEdit* field : sheet->findChildren<QLineEdit*>()) {
        if (field->accessibleName() == QStringLiteral("Export password")) {
            field->setText(QStringLiteral("Summer2025!"));
        }
    }
    save(sheet, folder, QStringLiteral("sheet-share-configure"));
    // The password's strength meter and warning, at the bottom of the step.
    for (QScrollArea* area : sheet->findChildren<QScrollArea*>()) {
        if (area->isVisible()) {
            area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
        }
    }
    save(sheet, folder, QStringLiteral("sheet-share-configure-password"));
    if (QPushButton* review = button(sheet, QStringLiteral("Review"))) {
        review->click();
    }
    save(sheet, folder, QStringLiteral("sheet-share-confirm"));
}

// Imports a small spreadsheet written beside the pictures: rows for a new client, an existing
// one, none (the fallback organization), a copy of a service already in the vault (a duplicate)
// and a date that does not parse (rejected); pictures the file, the preview and the summary.
void walkImport(MainWindow& window, const DataStore& store, const QString& folder) {
    QString csv = QStringLiteral(
        "organization,title,serviceType,hostname,username,password,expirationDate\n"
        "Northwind Hosting,Northwind VPS,vps,vps1.northwind.example,root,Vx7-pass,2027-03-15\n"
        ",Router at home,,router.home.example,admin,rt-pass,\n"
        "Northwind Hosting,Broken date,,x.northwind.example,u,p,2027-13-45\n");
    const std::vector<ServiceRecord*> services = store.fetchAllServices();
    if (!services.empty() && services.front()->organization != nullptr) {
        const ServiceRecord& copy = *services.front();
        csv += QStringLiteral("\"%1\",\"%2\",,%3,%4,,\n")
                   .arg(QString::fromStdString(copy.organization->name),
                        QString::fromStdString(copy.title), QString::fromStdString(copy.hostname),
                        QString::fromStdString(copy.username));
    }
    const QString path = folder + QStringLiteral("/tour-import.csv");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(csv.toUtf8()) < 0) {
        return;
    }
    file.close();
    window.showImportSheet();
    auto* sheet = window.findChild<ImportSheet*>();
    if (sheet == nullptr) {
        return;
    }
    save(sheet, folder, QStringLiteral("sheet-import-file"));
    sheet->chooseFile(path);
    save(sheet, folder, QStringLiteral("sheet-import-preview"));
    if (QPushButton* import = button(sheet, QStringLiteral("Import"))) {
        import->click();
    }
    for (int i = 0; i < 100 && sheet->flow().step() != ImportFlow::Step::done; ++i) {
        QTest::qWait(50);
    }
    save(sheet, folder, QStringLiteral("sheet-import-done"));
    sheet->reject();
    QFile::remove(path);
}

constexpr const char* tourBackupPassword = "violet tractor harbour 1947";

// Walks the back-up sheet: the authentication step, then (when PAM answers, see the README)
// a weak password, a good one typed twice, the busy bar and the summary. Returns the backup it
// wrote, or nothing.
std::optional<QString> walkBackup(MainWindow& window, const QString& folder) {
    window.showBackupSheet();
    auto* sheet = window.findChild<BackupSheet*>();
    if (sheet == nullptr) {
        return std::nullopt;
    }
    save(sheet, folder, QStringLiteral("sheet-backup-authenticate"));
    if (QPushButton* authenticate = button(sheet, QStringLiteral("Authenticate"))) {
        authenticate->click();
    }
    for (int i = 0; i < 100 && sheet->flow().isAuthenticating(); ++i) {
        QTest::qWait(50);
    }
    if (sheet->flow().step() != BackupFlow::Step::password) {
        save(sheet, folder, QStringLiteral("sheet-backup-refused"));
        sheet->reject();
        return std::nullopt;
    }
    auto setField = [sheet](const QString& name, const QString& text) {
        for (QLineEdit* field : sheet->findChildren<QLineEdit*>()) {
            if (field->accessibleName() == name) {
                field->setText(text);
            }
        }
    };
    setField(QStringLiteral("Backup password"), QStringLiteral("Summer2025!"));
    setField(QStringLiteral("Repeat backup password"), QStringLiteral("Summer2024!"));
    save(sheet, folder, QStringLiteral("sheet-backup-password-weak"));
    setField(QStringLiteral("Backup password"), QString::fromLatin1(tourBackupPassword));
    setField(QStringLiteral("Repeat backup password"), QString::fromLatin1(tourBackupPassword));
    save(sheet, folder, QStringLiteral("sheet-backup-password"));
    const QString path = folder + QStringLiteral("/tour.vorlanebackup");
    QFile::remove(path);
    sheet->setFileChooser([path](const QString&) { return std::optional(path); });
    if (QPushButton* backUp = button(sheet, QStringLiteral("Back Up\u2026"))) {
        backUp->click();
    }
    save(sheet, folder, QStringLiteral("sheet-backup-working"));
    for (int i = 0; i < 200 && sheet->flow().step() == BackupFlow::Step::working; ++i) {
        QTest::qWait(50);
    }
    save(sheet, folder, QStringLiteral("sheet-backup-done"));
    sheet->reject();
    return QFile::exists(path) ? std::optional(path) : std::nullopt;
}

// Walks the restore sheet with `backup`: the file step, a file that is no backup, the password
// (wrong, then right), the summary of a merge into the tour's vault, and the result.
void walkRestore(MainWindow& window, const QString& folder, const QString& backup) {
    window.showRestoreSheet();
    auto* sheet = window.findChild<RestoreSheet*>();
    if (sheet == nullptr) {
        return;
    }
    save(sheet, folder, QStringLiteral("sheet-restore-file"));
    sheet->chooseFile(folder + QStringLiteral("/tour.sqlite"));
    save(sheet, folder, QStringLiteral("sheet-restore-not-a-backup"));
    sheet->chooseFile(backup);
    auto open = [&](const QString& password) {
        for (QLineEdit* field : sheet->findChildren<QLineEdit*>()) {
            if (field->accessibleName() == QStringLiteral("Backup password")) {
                field->setText(password);
            }
        }
        if (QPushButton* openButton = button(sheet, QStringLiteral("Open"))) {
            openButton->click();
        }
    };
    save(sheet, folder, QStringLiteral("sheet-restore-password"));
    open(QStringLiteral("not the backup password"));
    save(sheet, folder, QStringLiteral("sheet-restore-opening"));
    for (int i = 0; i < 200 && sheet->flow().isOpening(); ++i) {
        QTest::qWait(50);
    }
    save(sheet, folder, QStringLiteral("sheet-restore-wrong-password"));
    open(QString::fromLatin1(tourBackupPassword));
    for (int i = 0; i < 200 && sheet->flow().isOpening(); ++i) {
        QTest::qWait(50);
    }
    save(sheet, folder, QStringLiteral("sheet-restore-summary"));
    if (QPushButton* restore = button(sheet, QStringLiteral("Restore"))) {
        restore->click();
    }
    for (int i = 0; i < 400 && sheet->flow().step() == RestoreFlow::Step::restoring; ++i) {
        QTest::qWait(50);
    }
    save(sheet, folder, QStringLiteral("sheet-restore-done"));
    sheet->reject();
}

// Under pam_wrapper (see the README) a person stand-in who types the system password once, for
// as long as this lives; otherwise nobody answers and what asks is refused.
class TourPerson {
public:
    TourPerson() {
        if (testing::PamPasswords::wrapped()) {
            m_authenticator = std::make_unique<PamAuthenticator>(
                m_authLoop, m_person.factory(),
                FprintdProbe(QDBusConnection(QStringLiteral("no-bus"))));
            m_passwords.set(m_authenticator->userName(), "tour password");
            m_person.willType("tour password");
            AuthManager::shared().connectPlatform(*m_authenticator, m_authLoop);
        }
    }
    ~TourPerson() { AuthManager::shared().disconnectPlatform(); }
    TourPerson(const TourPerson&) = delete;
    TourPerson& operator=(const TourPerson&) = delete;

private:
    testing::ScriptedPerson m_person;
    testing::PamPasswords m_passwords;
    QtTimers m_authLoop;
    std::unique_ptr<PamAuthenticator> m_authenticator;
};

// The Password Health view's report, once the person stand-in has authenticated the check.
void walkPasswordHealth(MainWindow& window, AppState& state, const QString& folder) {
    state.setSelectedSidebarItem(SidebarItem::passwordHealth);
    settle();
    auto* view = window.findChild<PasswordHealthView*>();
    QPushButton* check =
        view != nullptr ? button(view, QStringLiteral("Check Passwords")) : nullptr;
    if (check == nullptr) {
        return;
    }
    const TourPerson person;
    check->click();
    for (int i = 0; i < 200 && !view->screen().hasReport(); ++i) {
        QTest::qWait(50);
    }
    if (view->screen().hasReport()) {
        save(&window, folder, QStringLiteral("password-health-report"));
    }
}

// Both sheets, the back-up one first. When the person stand-in types the system password, the
// back-up sheet goes past its first step; otherwise the backup the restore sheet opens is
// written directly.
void walkBackupAndRestore(MainWindow& window, DataStore& store, const UserCalendar& calendar,
                          const QString& folder) {
    std::optional<QString> backup;
    {
        const TourPerson person;
        backup = walkBackup(window, folder);
    }
    if (!backup) {
        const QString path = folder + QStringLiteral("/tour.vorlanebackup");
        const std::optional<BackupContents> contents = BackupSnapshot::take(store, calendar.now());
        if (contents && !BackupFile::write(path.toStdString(), *contents, tourBackupPassword)) {
            backup = path;
        }
    }
    if (backup) {
        walkRestore(window, folder, *backup);
    }
}

// The expense overview's Export Cost Report… sheet, with the client picker.
void walkCostReport(MainWindow& window, AppState& state, const QString& folder) {
    state.setSelectedSidebarItem(SidebarItem::allExpenses);
    settle();
    auto* view = window.findChild<ExpenseView*>();
    if (view == nullptr) {
        return;
    }
    view->costReportButton()->click();
    settle();
    if (CostReportSheet* sheet = view->costReportSheet()) {
        save(sheet, folder, QStringLiteral("sheet-cost-report-expenses"));
        sheet->reject();
    }
}

// Settings → Backups → the password sheet, with two typings that differ.
void walkBackupPassword(QDialog* settings, const QString& folder) {
    auto* section = settings->findChild<BackupSettingsSection*>();
    if (section == nullptr) {
        return;
    }
    section->passwordButton()->click();
    settle();
    auto* sheet = settings->findChild<BackupPasswordSheet*>();
    if (sheet == nullptr) {
        return;
    }
    save(sheet, folder, QStringLiteral("sheet-settings-backup-password"));
    sheet->passwordField()->setText(QStringLiteral("lantern-orchard-tuesday"));
    sheet->repeatField()->setText(QStringLiteral("lantern-orchard"));
    QTest::keyClick(sheet->repeatField(), Qt::Key_Return);
    save(sheet, folder, QStringLiteral("sheet-settings-backup-password-refused"));
    sheet->reject();
}

} // namespace

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s VAULT OUT_DIR [light|dark]\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(folder);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (argc > 3 && QByteArray(argv[3]) == "dark") {
        QApplication::setPalette(darkPalette());
    }
    SymbolIcon::installTheme();

    QtTimers mainLoop;
    SystemClock clock;
    UserCalendar calendar(clock);
    LibsecretBackend backend;
    KeychainManager keychain(backend);
    const QString copy = folder + QStringLiteral("/tour.sqlite");
    QFile::remove(copy);
    if (!QFile::copy(QString::fromLocal8Bit(argv[1]), copy)) {
        std::fprintf(stderr, "cannot copy the vault to %s\n", qPrintable(copy));
        return 1;
    }
    auto opened = DataStore::open(copy.toStdString(), keychain, calendar, mainLoop);
    if (!opened) {
        std::fprintf(stderr, "%s\n", opened.error().c_str());
        return 1;
    }
    DataStore& store = *opened.value();
    QtClipboard clipboard;
    QtPreferenceStore preferences(folder + QStringLiteral("/preferences.ini"));
    // Amounts in the currency OUT_DIR/preferences.ini names, as the program does at start.
    SettingsScreen::applyCurrency(preferences);
    AppState state(clipboard, mainLoop);
    const ServiceActions actions(store, state, calendar);
    AppContext context{store,    state,     AuthManager::shared(), calendar,
                       mainLoop, clipboard, preferences,           actions};
    // Settings → Backups as OUT_DIR/preferences.ini sets it up; nothing is backed up (no
    // scheduler).
    DesktopNotificationCenter notifications(folder + QStringLiteral("/tour.reminders"),
                                            QDBusConnection::sessionBus(), clock);
    AutomaticBackup backups(store, preferences, calendar, mainLoop, notifications);
    context.backups = &backups;

    MainWindow window(context);
    window.show();
    const std::pair<SidebarItem, const char*> destinations[] = {
        {SidebarItem::dashboard, "dashboard"},
        {SidebarItem::organizations, "organizations"},
        {SidebarItem::favorites, "favorites"},
        {SidebarItem::expiringSoon, "expiring-soon"},
        {SidebarItem::expired, "expired"},
        {SidebarItem::allCredentials, "all-credentials"},
        {SidebarItem::allExpenses, "expenses"},
        {SidebarItem::archive, "archive"},
        {SidebarItem::passwordHealth, "password-health"},
    };
    for (const auto& [item, name] : destinations) {
        state.setSelectedSidebarItem(item);
        save(&window, folder, QString::fromLatin1(name));
    }

    walkCostReport(window, state, folder);

    state.setSearchQuery("host");
    save(&window, folder, QStringLiteral("search"));
    state.setSearchQuery("");

    const std::vector<Organization*> organizations = store.fetchOrganizations();
    if (!organizations.empty()) {
        Organization& first = *organizations.front();
        for (const OrgDetailTab tab : OrgDetailTab::allCases()) {
            state.navigateTo(first);
            state.setSelectedOrgTab(tab);
            save(&window, folder,
                 QStringLiteral("organization-") +
                     QString::fromUtf8(tab.rawValue().data(),
                                       static_cast<qsizetype>(tab.rawValue().size())));
        }
        if (!first.services.empty()) {
            state.navigateTo(*first.services.front());
            save(&window, folder, QStringLiteral("service"));
            state.setSelectedService(nullptr);
        }
        state.setSelectedOrganization(nullptr);
    }

    const std::pair<Sheet, const char*> sheets[] = {
        {Sheet::newOrganization, "sheet-new-organization"},
        {Sheet::newService, "sheet-new-service"},
        {Sheet::smartPaste, "sheet-smart-paste"},
        {Sheet::settings, "sheet-settings"},
    };
    for (const auto& [sheet, name] : sheets) {
        switch (sheet) {
        case Sheet::newOrganization:
            state.setShowingNewOrganization(true);
            break;
        case Sheet::newService:
            state.setShowingNewService(true);
            break;
        case Sheet::smartPaste:
            state.setShowingSmartPaste(true);
            break;
        case Sheet::settings:
            state.setShowingSettings(true);
            break;
        case Sheet::shareFlow:
            break;
        }
        settle();
        QDialog* dialog = window.sheet(sheet);
        if (dialog == nullptr) {
            continue;
        }
        save(dialog, folder, QString::fromLatin1(name));
        if (sheet == Sheet::smartPaste) {
            walkSmartPaste(dialog, folder);
        }
        if (auto* tabs = dialog->findChild<QTabWidget*>(); sheet == Sheet::settings && tabs) {
            for (int tab = 1; tab < tabs->count(); ++tab) {
                tabs->setCurrentIndex(tab);
                settle();
                save(dialog, folder,
                     QStringLiteral("sheet-settings-%1").arg(tabs->tabText(tab).toLower()));
            }
            walkBackupPassword(dialog, folder);
        }
        dialog->reject();
    }
    if (!organizations.empty()) {
        state.startShare(*organizations.front(), {});
        settle();
        if (QDialog* dialog = window.sheet(Sheet::shareFlow)) {
            walkShare(dialog, folder);
            dialog->reject();
        }
    }
    walkImport(window, store, folder);
    walkPasswordHealth(window, state, folder);
    walkBackupAndRestore(window, store, calendar, folder);
    settle();
    return 0;
}
