// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

class QLabel;
class QWidget;

namespace vorlane {

// The line under a field that says what is wrong with it: red text that stays legible on the
// light and dark palette, literal (a problem may quote what was typed), wrapped, hidden while
// there is nothing to say. Main thread, as every widget.
class ErrorLabel {
public:
    // A new, hidden label, owned by whoever adds it to a layout.
    static QLabel* create();
    // Shows `text`, or hides the label when it is empty.
    static void show(QLabel& label, const std::string& text);
    // `field` with `error` under it, as one cell of a form; the cell owns both.
    static QWidget* under(QWidget* field, QLabel* error);
};

} // namespace vorlane
