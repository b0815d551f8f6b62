// SPDX-License-Identifier: GPL-3.0-or-later
// Screen tests need one QApplication (the clipboard, the event loop that carries PAM's replies,
// widgets for the wiring checks); they run on the offscreen platform, without a display.

#include "SymbolIcon.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    vorlane::SymbolIcon::installTheme();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
