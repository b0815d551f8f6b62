// SPDX-License-Identifier: GPL-3.0-or-later
// Widget tests need one QApplication for the whole run; they run offscreen.

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
