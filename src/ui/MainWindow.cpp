// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "auth/AuthManager.h"
#include "backup/InventoryCsv.h"
#include "calendar/RenewalsCalendarFile.h"
#include "components/PlainText.h"
#include "screens/BackupSheet.h"
#include "screens/ImportSheet.h"
#include "screens/RestoreSheet.h"
#include "screens/SidebarView.h"
#include "store/DataStore.h"
#include "util/PrivateFile.h"
#include "util/UserCalendar.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QShowEvent>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace vorlane {

namespace {

constexpr std::array allSheets{Sheet::newOrganization, Sheet::newService, Sheet::smartPaste,
                               Sheet::shareFlow, Sheet::settings};

bool sheetFlag(const AppState& state, Sheet sheet) {
    switch (sheet) {
    case Sheet::newOrganization:
        return state.showingNewOrganization();
    case Sheet::newService:
        return state.showingNewService();
    case Sheet::smartPaste:
        return state.showingSmartPaste();
    case Sheet::shareFlow:
        return state.showingShareFlow();
    case Sheet::settings:
        return state.showingSettings();
    }
    return false;
}

void setSheetFlag(AppState& state, Sheet sheet, bool showing) {
    switch (sheet) {
    case Sheet::newOrganization:
        state.setShowingNewOrganization(showing);
        break;
    case Sheet::newService:
        state.setShowingNewService(showing);
        break;
    case Sheet::smartPaste:
        state.setShowingSmartPaste(showing);
        break;
    case Sheet::shareFlow:
        state.setShowingShareFlow(showing);
        break;
    case Sheet::settings:
        state.setShowingSettings(showing);
        break;
    }
}

QAction* addCommand(QMenu* menu, const QString& title, const QKeySequence& shortcut,
                    std::function<void()> action) {
    QAction* command = menu->addAction(title);
    command->setShortcut(shortcut);
    // The shortcuts work wherever the focus is in the window, the search field included.
    command->setShortcutContext(Qt::WindowShortcut);
    QObject::connect(command, &QAction::triggered, menu, std::move(action));
    return command;
}

} // namespace

MainWindow::MainWindow(AppContext& context, QWidget* parent)
    : QMainWindow(parent)
    , m_context(context)
    , m_chooseSaveFile([this](const QString& caption, const QString& path, const QString& filter) {
        return QFileDialog::getSaveFileName(this, caption, path, filter);
    })
    , m_search(new QLineEdit)
    , m_sidebar(new SidebarView(context))
    , m_detail(new QStackedWidget) {
    setWindowTitle(QStringLiteral("Vorlane"));
    setMinimumSize(minimumWindowSize);
    resize(defaultWindowSize);

    m_search->setPlaceholderText(QStringLiteral("Search credentials..."));
    m_search->setAccessibleName(QStringLiteral("Search credentials"));
    m_search->setClearButtonEnabled(true);
    m_search->addAction(SymbolIcon::icon("magnifyingglass"), QLineEdit::LeadingPosition)
        ->setText(QStringLiteral("Search"));
    // Qt's clear button carries no text of its own; a screen reader would announce a bare button.
    for (QAction* action :
         m_search->findChildren<QAction*>(QStringLiteral("_q_qlineeditclearaction"))) {
        action->setText(QStringLiteral("Clear search"));
    }
    connect(m_search, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_context.state.setSearchQuery(toStdString(text)); });

    auto* sidebarColumn = new QWidget;
    sidebarColumn->setMinimumWidth(200);
    sidebarColumn->setMaximumWidth(300);
    auto* sidebarLayout = new QVBoxLayout(sidebarColumn);
    sidebarLayout->setContentsMargins(8, 8, 0, 8);
    sidebarLayout->setSpacing(8);
    sidebarLayout->addWidget(m_search);
    sidebarLayout->addWidget(m_sidebar, 1);

    m_detail->setAccessibleName(QStringLiteral("Detail"));
    auto* splitter = new QSplitter;
    splitter->addWidget(sidebarColumn);
    splitter->addWidget(m_detail);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({240, defaultWindowSize.width() - 240});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);

    createMenus();
    createToolbar();
    m_stateConnection = ScopedConnection(m_context.state.changed, [this] { syncWithState(); });
    syncWithState();
    m_sidebar->setFocus();
}

MainWindow::~MainWindow() {
    // Sheets and screens hold references into the context: close them while it still exists,
    // and stop listening before the widgets that react go away.
    m_stateConnection.reset();
    for (QPointer<QDialog>& dialog : m_sheets) {
        delete dialog.data();
    }
    delete m_settingsWindow.data();
    delete m_importSheet.data();
    delete m_backupSheet.data();
    delete m_restoreSheet.data();
}

void MainWindow::createMenus() {
    AppState& state = m_context.state;
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    addCommand(file, QStringLiteral("New Organization"),
               QKeySequence(QStringLiteral("Ctrl+Shift+N")),
               [&state] { state.setShowingNewOrganization(true); });
    addCommand(file, QStringLiteral("New Service"), QKeySequence(QStringLiteral("Ctrl+N")),
               [&state] { state.setShowingNewService(true); });
    addCommand(file, QStringLiteral("Smart Paste"), QKeySequence(QStringLiteral("Ctrl+Shift+V")),
               [&state] { state.setShowingSmartPaste(true); });
    addCommand(file, QStringLiteral("Import\u2026"), QKeySequence(QStringLiteral("Ctrl+Shift+I")),
               [this] { showImportSheet(); });
    file->addSeparator();
    addCommand(file, QStringLiteral("Export Renewals Calendar\u2026"), QKeySequence(),
               [this] { exportRenewalsCalendar(); });
    addCommand(file, QStringLiteral("Export Inventory\u2026"), QKeySequence(),
               [this] { exportInventory(); });
    file->addSeparator();
    addCommand(file, QStringLiteral("Back Up Vault\u2026"),
               QKeySequence(QStringLiteral("Ctrl+Shift+B")), [this] { showBackupSheet(); });
    addCommand(file, QStringLiteral("Restore from Backup\u2026"),
               QKeySequence(QStringLiteral("Ctrl+Shift+R")), [this] { showRestoreSheet(); });
    file->addSeparator();
    addCommand(file, QStringLiteral("Lock Vault"), QKeySequence(QStringLiteral("Ctrl+Shift+L")),
               [this] { m_context.auth.lock(); });
    file->addSeparator();
    QAction* settings =
        addCommand(file, QStringLiteral("Settings…"), QKeySequence(QStringLiteral("Ctrl+,")),
                   [this] { showSettingsWindow(); });
    settings->setMenuRole(QAction::PreferencesRole);
    file->addSeparator();
    QAction* quit = addCommand(file, QStringLiteral("Quit"), QKeySequence(QKeySequence::Quit),
                               [] { QApplication::closeAllWindows(); });
    quit->setMenuRole(QAction::QuitRole);

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    addCommand(view, QStringLiteral("Dashboard"), QKeySequence(QStringLiteral("Ctrl+1")),
               [&state] { state.showDashboard(); });
    addCommand(view, QStringLiteral("Organizations"), QKeySequence(QStringLiteral("Ctrl+2")),
               [&state] { state.showOrganizations(); });
    addCommand(view, QStringLiteral("Expiring Soon"), QKeySequence(QStringLiteral("Ctrl+3")),
               [&state] { state.showExpiringSoon(); });
    view->addSeparator();
    addCommand(view, QStringLiteral("Search"), QKeySequence(QKeySequence::Find), [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    // Kept as an inert entry: there is no help to open yet.
    help->addAction(QStringLiteral("Vorlane Help"));
}

void MainWindow::createToolbar() {
    AppState& state = m_context.state;
    QToolBar* toolbar = addToolBar(QStringLiteral("Main"));
    toolbar->setObjectName(QStringLiteral("mainToolbar"));
    toolbar->setMovable(false);
    toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolbar->setAccessibleName(QStringLiteral("Toolbar"));

    auto* spacer = new QWidget;
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    toolbar->addWidget(spacer);

    auto* addMenu = new QMenu(this);
    connect(
        addMenu->addAction(SymbolIcon::icon("building.2.fill"), QStringLiteral("New Organization")),
        &QAction::triggered, this, [&state] { state.setShowingNewOrganization(true); });
    connect(addMenu->addAction(SymbolIcon::icon("plus.rectangle.on.folder"),
                               QStringLiteral("New Service")),
            &QAction::triggered, this, [&state] { state.setShowingNewService(true); });
    addMenu->addSeparator();
    connect(addMenu->addAction(SymbolIcon::icon("doc.on.clipboard"), QStringLiteral("Smart Paste")),
            &QAction::triggered, this, [&state] { state.setShowingSmartPaste(true); });
    connect(addMenu->addAction(SymbolIcon::icon("square.and.arrow.down"),
                               QStringLiteral("Import\u2026")),
            &QAction::triggered, this, [this] { showImportSheet(); });
    auto* add = new QToolButton;
    add->setText(QStringLiteral("Add"));
    add->setIcon(SymbolIcon::icon("plus"));
    add->setToolTip(QStringLiteral("Quick Add"));
    add->setAccessibleName(QStringLiteral("Add"));
    add->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    add->setPopupMode(QToolButton::InstantPopup);
    add->setMenu(addMenu);
    toolbar->addWidget(add);

    QAction* lock = toolbar->addAction(SymbolIcon::icon("lock"), QStringLiteral("Lock"));
    lock->setToolTip(QStringLiteral("Lock Vault"));
    connect(lock, &QAction::triggered, this, [this] { m_context.auth.lock(); });
}

QWidget* MainWindow::detailScreen() const {
    return m_detail->currentWidget();
}

QDialog* MainWindow::sheet(Sheet which) const {
    return m_sheets[static_cast<std::size_t>(which)].data();
}

void MainWindow::syncWithState() {
    const AppState& state = m_context.state;
    if (m_search->text() != toQString(state.searchQuery())) {
        m_search->setText(toQString(state.searchQuery()));
    }
    const Route route{routeDetail(state), state.selectedService(), state.selectedOrganization()};
    // A screen is built anew when the route or the record it shows changes, so that it starts
    // from its own initial choices (filters, sort order, revealed secrets hidden again).
    Route key = route;
    if (route.screen != DetailScreen::serviceDetail) {
        key.service = nullptr;
    }
    if (route.screen != DetailScreen::organizationDetail) {
        key.organization = nullptr;
    }
    if (!m_hasRoute || !(key == m_route)) {
        showRoute(key);
    }
    syncSheets();
}

void MainWindow::showRoute(const Route& route) {
    m_route = route;
    m_hasRoute = true;
    QWidget* old = m_detail->currentWidget();
    const bool hadFocus = old != nullptr && old->isAncestorOf(QApplication::focusWidget());
    QWidget* screen = ScreenFactory::createDetailScreen(route.screen, m_context);
    m_detail->addWidget(screen);
    m_detail->setCurrentWidget(screen);
    if (old != nullptr) {
        m_detail->removeWidget(old);
        // Later: the old screen may be the one whose button led here.
        old->deleteLater();
    }
    if (hadFocus) {
        screen->setFocus(Qt::OtherFocusReason);
    }
}

void MainWindow::syncSheets() {
    for (const Sheet which : allSheets) {
        QPointer<QDialog>& open = m_sheets[static_cast<std::size_t>(which)];
        const bool wanted = sheetFlag(m_context.state, which);
        if (wanted && open.isNull()) {
            QDialog* dialog = ScreenFactory::createSheet(which, m_context, this);
            dialog->setWindowModality(Qt::WindowModal);
            dialog->setAttribute(Qt::WA_DeleteOnClose);
            connect(dialog, &QDialog::finished, this, [this, which] {
                // Forgotten first: the dialog is already closing and must not be closed again.
                m_sheets[static_cast<std::size_t>(which)].clear();
                setSheetFlag(m_context.state, which, false);
            });
            open = dialog;
            dialog->open();
        } else if (!wanted && !open.isNull()) {
            QDialog* dialog = open.data();
            open.clear();
            dialog->close();
        }
    }
}

void MainWindow::showSettingsWindow() {
    if (m_settingsWindow.isNull()) {
        m_settingsWindow = ScreenFactory::createSettingsWindow(m_context);
        m_settingsWindow->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_settingsWindow->show();
    m_settingsWindow->raise();
    m_settingsWindow->activateWindow();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    AppState& state = m_context.state;
    if (state.exportKeyOnlyOnClipboard()) {
        QMessageBox ask(QMessageBox::Warning, QStringLiteral("Quit Vorlane"),
                        toQString(AppState::exportKeyQuitQuestion), QMessageBox::NoButton, this);
        ask.setTextFormat(Qt::PlainText);
        QPushButton* quit = ask.addButton(QStringLiteral("Quit"), QMessageBox::DestructiveRole);
        QPushButton* stay = ask.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
        // A stray Return must not lose the key.
        ask.setDefaultButton(stay);
        ask.setEscapeButton(stay);
        ask.exec();
        if (ask.clickedButton() != quit) {
            event->ignore();
            return;
        }
    }
    state.clearClipboardBeforeQuit();
    QMainWindow::closeEvent(event);
}

void MainWindow::exportRenewalsCalendar() {
    const QString path =
        m_chooseSaveFile(QStringLiteral("Export Renewals Calendar"),
                         QDir::home().filePath(toQString(RenewalsCalendar::proposedFileName)),
                         QStringLiteral("iCalendar (*.ics)"));
    if (path.isEmpty()) {
        return;
    }
    const RenewalsCalendar::Written calendar =
        RenewalsCalendarFile::build(m_context.store, m_context.preferences, m_context.calendar);
    if (const auto error = PrivateFile::write(path.toStdString(), calendar.text)) {
        // The reason names the chosen path, which is the user's own text.
        QMessageBox box(
            QMessageBox::Warning, QStringLiteral("Export Renewals Calendar"),
            QStringLiteral("The calendar could not be written: %1").arg(toQString(*error)),
            QMessageBox::Ok, this);
        PlainText::apply(box);
        box.exec();
        return;
    }
    if (calendar.eventCount == 0) {
        QMessageBox::information(this, QStringLiteral("Export Renewals Calendar"),
                                 toQString(RenewalsCalendar::nothingToExport));
    }
}

void MainWindow::exportInventory() {
    const QString path = m_chooseSaveFile(QStringLiteral("Export Inventory"),
                                          QDir::home().filePath(toQString(InventoryCsv::fileName(
                                              m_context.calendar.now(), m_context.calendar))),
                                          QStringLiteral("CSV (*.csv)"));
    if (path.isEmpty()) {
        return;
    }
    if (const auto error =
            InventoryCsv::write(path.toStdString(), m_context.store, m_context.calendar)) {
        // The reason names the chosen path, which is the user's own text.
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Export Inventory"), toQString(*error),
                        QMessageBox::Ok, this);
        PlainText::apply(box);
        box.exec();
    }
}

void MainWindow::showImportSheet() {
    if (m_importSheet.isNull()) {
        m_importSheet = new ImportSheet(m_context, this);
        m_importSheet->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_importSheet->open();
    m_importSheet->raise();
    m_importSheet->activateWindow();
}

void MainWindow::showBackupSheet() {
    if (m_backupSheet.isNull()) {
        m_backupSheet = new BackupSheet(m_context, this);
        m_backupSheet->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_backupSheet->open();
    m_backupSheet->raise();
    m_backupSheet->activateWindow();
}

void MainWindow::showRestoreSheet() {
    if (m_restoreSheet.isNull()) {
        m_restoreSheet = new RestoreSheet(m_context, this);
        m_restoreSheet->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_restoreSheet->open();
    m_restoreSheet->raise();
    m_restoreSheet->activateWindow();
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!event->spontaneous()) {
        Q_EMIT contentShown();
    }
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // A restore from minimised shows the content again, but its show event is a spontaneous one
    // (the window system's), which showEvent leaves aside: the state change says it instead.
    if (event->type() == QEvent::WindowStateChange &&
        (static_cast<QWindowStateChangeEvent*>(event)->oldState() & Qt::WindowMinimized) != 0 &&
        !isMinimized()) {
        Q_EMIT contentShown();
    }
}

} // namespace vorlane
