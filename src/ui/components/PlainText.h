// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QLabel;
class QMessageBox;

namespace vorlane {

// Text a person typed or pasted (titles, notes, names, tags, revealed secrets, an error that
// quotes them, what PAM says) is shown exactly as written. Qt's labels, message boxes and
// tooltips guess: text that looks like HTML (Qt::mightBeRichText) is rendered as HTML, so a
// pasted title such as `<img src="/dev/zero">` would make the window read that file, and a "<b>"
// in a password would vanish into bold type. Every widget that shows such text takes it from
// here. Main thread, as every widget.
class PlainText {
public:
    // A new label (owned by whoever adds it to a layout) that never reads its text as HTML.
    static QLabel* label(const QString& text = {});
    // Makes an existing label read its text literally, from now on.
    static void apply(QLabel& label);
    // A message box's text and informative text read literally; call once its texts are set,
    // since the informative text's label is made when that text is first set.
    static void apply(QMessageBox& box);

    // A secret's label, masked or revealed: literal, and neither selectable nor copyable from the
    // label itself (a selection would fill the PRIMARY selection and the label's own menu would
    // copy it, both beyond the copy buttons' password-manager hint and timed clear). Set it before
    // the label is ever made selectable: a text control, once made, stays.
    static void applySecret(QLabel& label);

    // For a widget that has to stay rich text (a label with links): the text with its markup
    // characters escaped and line breaks kept.
    static QString escaped(const QString& text);
    // A tooltip (set on a widget or returned for Qt::ToolTipRole) that shows `text` literally:
    // unchanged unless Qt would take it for HTML, escaped rich text then.
    static QString toolTip(const QString& text);
};

} // namespace vorlane
