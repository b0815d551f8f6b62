// SPDX-License-Identifier: GPL-3.0-or-later
// The reminder tests wait on D-Bus replies and signals: one Qt event loop for the whole run.

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
