// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace vorlane {

// Asks before something that cannot be undone (deleting a service, a payment): a warning box,
// window-modal on `parent`, whose default and Escape answer is Cancel, so that a stray Return
// never deletes; its texts are shown literally (they quote what the user typed). Returns at once;
// `onConfirm` runs later, only when the destructive button is clicked. The box deletes itself
// when closed. Main thread.
class DestructiveConfirmation {
public:
    static void ask(QWidget* parent, const QString& title, const QString& message,
                    const QString& confirmTitle, std::function<void()> onConfirm);
};

} // namespace vorlane
