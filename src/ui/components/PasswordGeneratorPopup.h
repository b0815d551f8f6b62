// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/PasswordGeneratorScreen.h"

#include <QDialog>

#include <functional>
#include <string>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;
class QStackedWidget;

namespace vorlane {

struct AppContext;

// The sheet behind every "Generate" button: draws a PasswordGeneratorScreen (kind, length or
// words, character classes, the candidate and its strength) and hands the candidate to `use`
// on "Use Password". Window-modal over the button's window. Main thread.
class PasswordGeneratorPopup : public QDialog {
    Q_OBJECT

public:
    using Use = std::function<void(std::string)>;

    PasswordGeneratorPopup(AppContext& context, QWidget* parent, Use use);

    // Opens the sheet over `anchor`'s window; `use` runs once if a candidate is taken.
    static void choose(AppContext& context, QWidget* anchor, Use use);

    PasswordGeneratorScreen& screen() { return m_screen; }

private:
    void refresh();

    PasswordGeneratorScreen m_screen;
    Use m_use;
    QComboBox* m_style;
    QStackedWidget* m_pages;
    QSpinBox* m_length;
    std::vector<std::pair<PasswordGeneratorScreen::CharacterClass, QCheckBox*>> m_classes;
    QCheckBox* m_avoidLookAlikes;
    QSpinBox* m_words;
    QComboBox* m_separator;
    QLabel* m_candidate;
    QLabel* m_strength;
    QPushButton* m_useButton;
};

} // namespace vorlane
