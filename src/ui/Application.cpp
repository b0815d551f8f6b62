// SPDX-License-Identifier: GPL-3.0-or-later
#include "Application.h"

#include "BackupScheduler.h"
#include "DesktopNotificationCenter.h"
#include "DialogAuthenticationPrompt.h"
#include "LibsecretBackend.h"
#include "MainWindow.h"
#include "PamAuthenticator.h"
#include "ProcessHardening.h"
#include "QtClipboard.h"
#include "QtPreferenceStore.h"
#include "QtTimers.h"
#include "ReminderSchedule.h"
#include "Reminders.h"
#include "SingleInstance.h"
#include "SymbolIcon.h"
#include "TerminationSignals.h"
#include "VaultLock.h"
#include "VaultOpening.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "app/ServiceActions.h"
#include "auth/AuthManager.h"
#include "backup/AutomaticBackup.h"
#include "components/PlainText.h"
#include "reminders/NotificationManager.h"
#include "screens/SettingsScreen.h"
#include "secrets/KeychainManager.h"
#include "store/DataStore.h"
#include "store/VaultLocation.h"
#include "util/SystemClock.h"
#include "util/UserCalendar.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QStatusBar>
#include <QStringList>
#include <QVBoxLayout>

#include <csignal>
#include <cstdio>

namespace vorlane {

namespace {

QStringList argumentList(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    return arguments;
}

void describeOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        QStringLiteral("Vorlane keeps your clients' servers, accounts, domains and keys in a local "
                       "vault; passwords stay in the desktop's secret store."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption(QCommandLineOption(
        QStringLiteral("vault"),
        QStringLiteral("Use the vault file at <path> instead of the default one."),
        QStringLiteral("path")));
    parser.addOption(QCommandLineOption(
        QStringLiteral("deliver-due-notifications"),
        QStringLiteral("Show the renewal reminders that are due, then exit (no window; for the "
                       "vorlane-reminders timer).")));
}

std::string vaultPathFrom(const QCommandLineParser& parser) {
    return VaultLocation::resolve(
        parser.isSet(QStringLiteral("vault"))
            ? std::optional(parser.value(QStringLiteral("vault")).toStdString())
            : std::nullopt);
}

// The reminders timer's run: only the schedule beside the vault is read, never the vault itself,
// so it neither needs the keyring nor waits for a running program to let go of the vault.
int deliverDueNotifications(int argc, char* argv[], const std::string& vaultPath) {
    const QCoreApplication app(argc, argv);
    const SystemClock clock;
    DesktopNotificationCenter center(ReminderSchedule::pathBeside(vaultPath),
                                     QDBusConnection::sessionBus(), clock);
    return center.deliverDue(clock.now()) ? 0 : 1;
}

// Without a display there is nobody to click a message box away (and creating the GUI
// application would abort): the message on stderr is all there is.
bool hasDisplay() {
    return (!qEnvironmentVariableIsEmpty("DISPLAY") ||
            !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) &&
           qgetenv("QT_QPA_PLATFORM") != "offscreen";
}

// Another program holds the vault. When it is Vorlane, its window comes to the front and this
// start ends there, successfully: two windows on one vault would overwrite each other's changes.
int handOverToRunningInstance(int argc, char* argv[], const std::string& vaultPath,
                              const VaultLock& lock) {
    // The GUI may already be up, waiting for the vault.
    std::optional<QCoreApplication> app;
    if (QCoreApplication::instance() == nullptr) {
        app.emplace(argc, argv);
    }
    const auto holder = lock.holder();
    const auto holderAlive = [&lock] {
        const auto current = lock.holder();
        return current && ::kill(static_cast<pid_t>(current->pid), 0) == 0;
    };
    // Whoever listens on the vault's socket is a Vorlane window; a Vorlane still opening the vault
    // listens soon. Anything else holding the lock (the demo writer) will never answer.
    const QString socketName = VaultLock::instanceSocketName(vaultPath);
    const bool worthAsking =
        QFileInfo::exists(socketName) || (holder && holder->program == QLatin1String("vorlane"));
    if (worthAsking && SingleInstance::askToRaise(socketName, 10000, holderAlive)) {
        return 0;
    }
    std::fprintf(stderr, "vorlane: %s is in use by %s (process %lld); try again when it is done\n",
                 vaultPath.c_str(), holder ? qPrintable(holder->program) : "another program",
                 holder ? static_cast<long long>(holder->pid) : 0LL);
    return 1;
}

void startGui(std::optional<QApplication>& app, int& argc, char* argv[]) {
    app.emplace(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Vorlane"));
    QApplication::setDesktopFileName(QStringLiteral(VORLANE_APP_ID));
    // Our icon table names Breeze icons; use Breeze whatever the desktop's own theme is, so that
    // no icon comes out blank under a theme that lacks one of them.
    SymbolIcon::installTheme();
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("security-high")));
}

// The window shown while the vault opens: titled and sized as the main one, which takes its
// place.
std::unique_ptr<QWidget> openingWindow() {
    auto progress = std::make_unique<QWidget>();
    progress->setWindowTitle(QStringLiteral("Vorlane"));
    progress->setMinimumSize(MainWindow::minimumWindowSize);
    progress->resize(MainWindow::defaultWindowSize);
    auto* layout = new QVBoxLayout(progress.get());
    layout->addStretch();
    auto* label = new QLabel(QStringLiteral("Opening your vault…"));
    label->setAlignment(Qt::AlignCenter);
    layout->addWidget(label);
    auto* busy = new QProgressBar;
    busy->setRange(0, 0); // no known length: the bar shows activity
    busy->setTextVisible(false);
    busy->setAccessibleName(QStringLiteral("Opening your vault"));
    busy->setMaximumWidth(240);
    layout->addWidget(busy, 0, Qt::AlignHCenter);
    layout->addStretch();
    return progress;
}

} // namespace

int Application::run(int argc, char* argv[]) {
    ProcessHardening::disableCoreDumps();
    QCoreApplication::setApplicationName(QStringLiteral("vorlane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VORLANE_VERSION));
    QCoreApplication::setOrganizationName(QStringLiteral("Vorlane"));

    // Parsed before QApplication exists: --help and --version must work on a machine without a
    // display, where creating the GUI application would abort.
    QCommandLineParser parser;
    describeOptions(parser);
    if (!parser.parse(argumentList(argc, argv))) {
        std::fprintf(stderr, "vorlane: %s\n", qPrintable(parser.errorText()));
        return 2;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        std::printf("vorlane %s\n", VORLANE_VERSION);
        return 0;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        // Without an application object Qt cannot know the program's name for the usage line.
        std::printf("%s", qPrintable(parser.helpText().replace(QStringLiteral("<executable_name>"),
                                                               QStringLiteral("vorlane"))));
        return 0;
    }
    if (parser.isSet(QStringLiteral("deliver-due-notifications"))) {
        return deliverDueNotifications(argc, argv, vaultPathFrom(parser));
    }

    // From here on a logout or `kill` ends the program through its own quit, once it runs.
    TerminationSignals termination;
    // The vault is opened before the GUI exists, so that a vault that cannot be used is reported
    // (and the program ends) on a machine without a display too.
    QtTimers mainLoop;
    SystemClock clock;
    UserCalendar calendar(clock);
    LibsecretBackend secretBackend;
    KeychainManager keychain(secretBackend);
    const std::string vaultPath = vaultPathFrom(parser);
    // Locked before the vault is read, so that a second start leaves at once. The first run's
    // vault has no folder yet to hold the lock: the lock is taken once opening has made it.
    VaultLock vaultLock(vaultPath);
    if (vaultLock.tryAcquire() == VaultLock::Outcome::heldByAnother) {
        return handOverToRunningInstance(argc, argv, vaultPath, vaultLock);
    }
    // The vault opens while the GUI starts; without a display there is no GUI to start, and a
    // vault that cannot be used is still reported on stderr.
    VaultOpening opening(vaultPath, keychain, calendar, mainLoop);
    std::optional<QApplication> app;
    std::unique_ptr<QWidget> progress;
    if (hasDisplay()) {
        startGui(app, argc, argv);
        progress = openingWindow();
    }
    std::optional<VaultOpening::Opened> opened =
        progress ? opening.waitBehind(*progress) : std::optional(opening.wait());
    if (!opened) {
        return 0; // closed while opening
    }
    if (!*opened) {
        const std::string message = "Failed to initialize data store: " + opened->error();
        std::fprintf(stderr, "%s\n", message.c_str());
        if (app) {
            // The reason quotes the vault's path, which may hold anything.
            QMessageBox box(QMessageBox::Critical, QStringLiteral("Vorlane"),
                            QString::fromStdString(message), QMessageBox::Ok,
                            progress->isVisible() ? progress.get() : nullptr);
            PlainText::apply(box);
            box.exec();
        }
        return 1;
    }
    const std::unique_ptr<DataStore> store = std::move(*opened).value();
    if (vaultLock.tryAcquire() == VaultLock::Outcome::heldByAnother) {
        return handOverToRunningInstance(argc, argv, vaultPath, vaultLock);
    }
    if (!app) {
        startGui(app, argc, argv);
    }

    PamAuthenticator authenticator(mainLoop, DialogAuthenticationPrompt::factory());
    AuthManager::shared().connectPlatform(authenticator, mainLoop);

    QtClipboard clipboard;
    QtPreferenceStore preferences;
    SettingsScreen::applyCurrency(preferences);
    AppState state(clipboard, mainLoop);
    const ServiceActions serviceActions(*store, state, calendar);
    AppContext context{*store,   state,     AuthManager::shared(), calendar,
                       mainLoop, clipboard, preferences,           serviceActions};

    DesktopNotificationCenter notificationCenter(ReminderSchedule::pathBeside(vaultPath),
                                                 QDBusConnection::sessionBus(), clock);
    NotificationManager notificationManager(notificationCenter, calendar);
    // Before the window, whose Settings draw the automatic backups and go with it.
    AutomaticBackup automaticBackup(*store, preferences, calendar, mainLoop, notificationCenter);
    context.backups = &automaticBackup;
    const BackupScheduler backupScheduler(automaticBackup, *store, mainLoop, clock);
    MainWindow window(context);
    if (!keychain.isAvailable()) {
        // Records still work, but nothing secret can be kept: say so rather than fail silently
        // at the first password.
        // A widget rather than a status message, which the next status tip would wipe out.
        window.statusBar()->addWidget(new QLabel(QStringLiteral(
            "No Secret Service is running: passwords and API keys cannot be saved or shown. "
            "Start GNOME Keyring, KWallet or KeePassXC and restart Vorlane.")));
    }
    SingleInstance instance;
    if (vaultLock.isHeld()) {
        instance.listen(VaultLock::instanceSocketName(vaultPath));
    }
    QObject::connect(&instance, &SingleInstance::raiseRequested, &window, [&window] {
        window.setWindowState((window.windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
        window.show();
        window.raise();
        window.activateWindow();
    });
    const Reminders reminders(context, notificationCenter, notificationManager, window);
    if (progress && progress->isVisible()) {
        window.setGeometry(progress->geometry());
    }
    window.show();
    progress.reset();
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &window, [&state] {
        // Nobody is there to answer the export key's question, so exit() rather than quit(),
        // which would ask every window to close; a copied password is cleared, and the store
        // saves what is unsaved as it closes.
        state.clearClipboardBeforeQuit();
        QApplication::exit(0);
    });
    termination.listen();
    const int status = QApplication::exec();
    // The shared instance outlives this function; the authenticator and timers it uses do not.
    AuthManager::shared().disconnectPlatform();
    return status;
}

} // namespace vorlane
