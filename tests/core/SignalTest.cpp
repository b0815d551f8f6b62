// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Signal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorlane {
namespace {

TEST(SignalTest, NotifiesInConnectionOrderAndStopsAfterDisconnect) {
    Signal<int> changed;
    std::vector<std::string> calls;
    const auto first = changed.connect([&](int v) { calls.push_back("a" + std::to_string(v)); });
    changed.connect([&](int v) { calls.push_back("b" + std::to_string(v)); });
    changed.emit(1);
    changed.disconnect(first);
    changed.emit(2);
    EXPECT_EQ(calls, (std::vector<std::string>{"a1", "b1", "b2"}));
    changed.disconnect(first); // twice is harmless
    EXPECT_EQ(changed.size(), 1u);
}

TEST(SignalTest, SlotMayDisconnectItselfWhileBeingNotified) {
    Signal<> changed;
    int calls = 0;
    Signal<>::ConnectionId self = 0;
    self = changed.connect([&] {
        ++calls;
        changed.disconnect(self);
    });
    changed.emit();
    changed.emit();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(changed.size(), 0u);
}

} // namespace
} // namespace vorlane
