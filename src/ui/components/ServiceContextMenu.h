// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>

#include <functional>

class QWidget;

namespace vorlane {

struct AppContext;
struct ServiceRecord;

// Shows a service row's context menu (the items of the core's ServiceRowMenu, with their enabled
// states) and carries out the choice: the actions the core runs, plus the two that need the
// desktop: "Open URL" through the desktop's URL handler and "Delete…" after a confirmation
// dialog. Returns once the menu is closed and the choice is done (a password copy completes later,
// after the authentication reply). Main thread only.
class ServiceContextMenu {
public:
    static void exec(AppContext& context, ServiceRecord& service,
                     const std::function<void(ServiceRecord&)>& open, QWidget* parent,
                     const QPoint& globalPosition);
    // Asks "Delete Service" with the confirmation text; true when the person chose "Delete".
    static bool confirmDeletion(AppContext& context, ServiceRecord& service, QWidget* parent);
};

} // namespace vorlane
