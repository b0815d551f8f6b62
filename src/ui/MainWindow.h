// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ScreenFactory.h"
#include "app/DetailScreen.h"
#include "util/ScopedConnection.h"

#include <QMainWindow>
#include <QPointer>

#include <array>
#include <functional>

class QDialog;
class QLineEdit;
class QStackedWidget;

namespace vorlane {

struct AppContext;
struct Organization;
struct ServiceRecord;
class SidebarView;

// The main window: the sidebar column (search field, destinations) beside the detail pane that
// shows the screen the navigation state routes to, the menus and toolbar, and the sheets, each
// open exactly while its flag is set. Main thread; the context must outlive the window.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(AppContext& context, QWidget* parent = nullptr);
    ~MainWindow() override;

    static constexpr QSize minimumWindowSize{1000, 650};
    static constexpr QSize defaultWindowSize{1280, 800};

    // The widget the detail pane shows now (for tests and screenshots).
    QWidget* detailScreen() const;
    DetailScreen detailRoute() const { return m_route.screen; }
    // The open sheet for `sheet`, if any.
    QDialog* sheet(Sheet sheet) const;
    QLineEdit* searchField() const { return m_search; }

    // Shows the separate settings window, creating it on first use.
    void showSettingsWindow();
    // Asks where, then writes the renewals as an iCalendar file there.
    void exportRenewalsCalendar();
    // Asks where, then writes the inventory there (every service, no secrets, as CSV).
    void exportInventory();

    // Where an export goes: the save dialog's answer (caption, proposed path, name filter), an
    // empty path when the person cancels. A file dialog unless replaced (tests answer it).
    using SaveFileChooser =
        std::function<QString(const QString& caption, const QString& path, const QString& filter)>;
    void setSaveFileChooser(SaveFileChooser chooser) { m_chooseSaveFile = std::move(chooser); }
    // Opens the import sheet, or brings forward the one already open.
    void showImportSheet();
    // Open the back-up or the restore sheet, or bring forward the one already open.
    void showBackupSheet();
    void showRestoreSheet();

Q_SIGNALS:
    // Each time the window's content is shown (the start, and after being hidden or minimised).
    void contentShown();

protected:
    void showEvent(QShowEvent* event) override;
    // Closing the window quits: a copy still waiting for its clear is cleared now, and while a
    // share's export key is only on the clipboard the person is asked first.
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Route {
        DetailScreen screen = DetailScreen::dashboard;
        const ServiceRecord* service = nullptr;
        const Organization* organization = nullptr;
        friend bool operator==(const Route&, const Route&) = default;
    };

    void createMenus();
    void createToolbar();
    void syncWithState();
    void showRoute(const Route& route);
    void syncSheets();

    AppContext& m_context;
    SaveFileChooser m_chooseSaveFile;
    QLineEdit* m_search;
    SidebarView* m_sidebar;
    QStackedWidget* m_detail;
    Route m_route;
    bool m_hasRoute = false;
    std::array<QPointer<QDialog>, 5> m_sheets;
    QPointer<QWidget> m_settingsWindow;
    QPointer<QDialog> m_importSheet;
    QPointer<QDialog> m_backupSheet;
    QPointer<QDialog> m_restoreSheet;
    ScopedConnection m_stateConnection;
};

} // namespace vorlane
