// SPDX-License-Identifier: GPL-3.0-or-later
#include "SecretBuffer.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace vorlane {
namespace {

TEST(SecretBufferTest, HoldsTheTextAndWipingEmptiesIt) {
    SecretBuffer buffer("hunter2");
    EXPECT_EQ(buffer.view(), "hunter2");
    EXPECT_EQ(buffer.size(), 7u);
    buffer.wipe();
    EXPECT_TRUE(buffer.empty());
    EXPECT_EQ(buffer.view(), "");
}

TEST(SecretBufferTest, MovingHandsOverTheSameStorageWithoutACopy) {
    SecretBuffer first("hunter2");
    const char* storage = first.view().data();
    SecretBuffer second(std::move(first));
    EXPECT_EQ(second.view().data(), storage);
    EXPECT_EQ(second.view(), "hunter2");
    EXPECT_TRUE(first.empty()); // NOLINT(bugprone-use-after-move): the contract says so

    SecretBuffer third("old");
    third = std::move(second);
    EXPECT_EQ(third.view().data(), storage);
    EXPECT_TRUE(second.empty()); // NOLINT(bugprone-use-after-move)
}

TEST(SecretBufferTest, WipeOverwritesForeignCopies) {
    std::array<char, 8> copy{'h', 'u', 'n', 't', 'e', 'r', '2', 'x'};
    SecretBuffer::wipe(copy.data(), 7);
    EXPECT_EQ(copy, (std::array<char, 8>{0, 0, 0, 0, 0, 0, 0, 'x'}));
}

} // namespace
} // namespace vorlane
