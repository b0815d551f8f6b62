// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Finding a widget's parts the way a person (or a screen reader) does: by the text a button
// shows, by a control's accessible name, by what a label says. A lookup that finds nothing adds
// a failure naming what was sought and returns null, so that the test stops at the missing part.

#include <QLabel>
#include <QPushButton>
#include <QString>
#include <QWidget>

#include <gtest/gtest.h>

namespace vorlane::testing {

// The child of type T whose accessible name is `name`.
template <typename T> T* childNamed(const QWidget& parent, const QString& name) {
    for (T* child : parent.findChildren<T*>()) {
        if (child->accessibleName() == name) {
            return child;
        }
    }
    ADD_FAILURE() << "no child named " << name.toStdString();
    return nullptr;
}

// The visible push button showing `text` (hidden steps of a sheet may hold one with the same
// text).
inline QPushButton* buttonTitled(const QWidget& parent, const QString& text) {
    for (QPushButton* button : parent.findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisible()) {
            return button;
        }
    }
    ADD_FAILURE() << "no button " << text.toStdString();
    return nullptr;
}

// Whether a visible label under `widget` shows exactly `text`.
inline bool showsLabel(const QWidget& widget, const QString& text) {
    for (const QLabel* label : widget.findChildren<QLabel*>()) {
        if (label->isVisible() && label->text() == text) {
            return true;
        }
    }
    return false;
}

} // namespace vorlane::testing
