// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/DetailScreen.h"

class QDialog;
class QWidget;

namespace vorlane {

struct AppContext;

// The sheets the main window opens, each bound to one flag of the navigation state.
enum class Sheet { newOrganization, newService, smartPaste, shareFlow, settings };

// Where every screen and sheet is built: the one place a new screen is plugged into the window.
// The caller owns what it gets.
class ScreenFactory {
public:
    // The detail pane's widget for `screen`, built for the state as it is now (the selected
    // service or organization, the search query).
    static QWidget* createDetailScreen(DetailScreen screen, AppContext& context);
    // A window-modal dialog for `sheet`, not yet shown. The window clears the sheet's flag when
    // the dialog finishes, whatever its result.
    static QDialog* createSheet(Sheet sheet, AppContext& context, QWidget* parent);
    // The separate settings window (one per run; the caller keeps it).
    static QWidget* createSettingsWindow(AppContext& context);
};

} // namespace vorlane
