// SPDX-License-Identifier: GPL-3.0-or-later
// The vault lock's tests need a Qt main loop (replies and prompts arrive on it) but no display.

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
