// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QDialog;
class QFrame;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace vorlane {

// The frame of a step-by-step sheet, laid into a dialog that has no layout yet: a header with the
// title in large bold type over a subtitle (and, when asked, a close button in the corner), the
// content, a divider, and a footer with Back on the left and Cancel and the main button on the
// right. Cancel and the close button reject the dialog. The main button is the default one, so
// Return goes to it and never to Back or Cancel. The subtitle's text, Back's visibility and what
// Back and the main button do belong to the sheet. The dialog owns every widget made here; the
// pointers handed out live as long as it does. Main thread only.
class SheetFrame {
public:
    enum class CloseButton { hidden, shown };

    SheetFrame(QDialog& dialog, const QString& title, CloseButton closeButton);

    // Where the sheet puts what sits between the header and the footer; it takes the height left.
    QVBoxLayout* content() const { return m_content; }
    QLabel* subtitle() const { return m_subtitle; }
    QPushButton* back() const { return m_back; }
    QPushButton* main() const { return m_main; }

    // Puts the footer's buttons after everything else for Tab, as they are read: call once the
    // content is in place (they are made before it, and would otherwise come first).
    void tabToFooterLast();

    // A rule across the sheet, as the one above the footer.
    static QFrame* divider();

private:
    QVBoxLayout* m_content;
    QLabel* m_subtitle;
    QDialog& m_dialog;
    QPushButton* m_back;
    QPushButton* m_cancel;
    QPushButton* m_main;
};

} // namespace vorlane
