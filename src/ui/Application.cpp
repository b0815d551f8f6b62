#include "Application.h"

#include "DialogAuthenticationPrompt.h"
#include "MainWindow.h"
#include "PamAuthenticator.h"
#include "ProcessHardening.h"
#include "QtTimers.h"
#include "SymbolIcon.h"
#include "auth/AuthManager.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QStringList>

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
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Vorlane"));
    QApplication::setDesktopFileName(QStringLiteral("vorlane"));
    // Our icon table names Breeze icons; use Breeze whatever the desktop's own theme is, so that
    // no icon comes out blank under a theme that lacks one of them.
    SymbolIcon::installTheme();
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("security-high")));

    QtTimers mainLoop;
    PamAuthenticator authenticator(mainLoop, DialogAuthenticationPrompt::factory());
    AuthManager::shared().connectPlatform(authenticator, mainLoop);

    MainWindow window;
    window.show();
    return QApplication::exec();
}

} // namespace vorlane
