// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Whitespace.h"

#include "util/TagText.h"

#include <gtest/gtest.h>

namespace vorlane {
namespace {

TEST(WhitespaceTest, TrimmingRemovesUnicodeWhitespaceAtTheEndsOnly) {
    EXPECT_EQ(trimmed("\u00A0\u3000 Acme\u00A0Corp\t\u2028\r\n"), "Acme\u00A0Corp");
    EXPECT_EQ(trimmed("\u2029\u0085\u202F"), "");
    EXPECT_TRUE(isBlank("\u00A0\u3000\u2028"));
    EXPECT_TRUE(isBlank(""));
    // Characters next to whitespace survive whole, whatever their length in bytes.
    EXPECT_EQ(trimmed("\u3000\u00E9\u3000"), "\u00E9");
    EXPECT_EQ(trimmed(" \U0001F511\u00A0"), "\U0001F511");
    // A zero-width space is invisible but is not whitespace, and invalid bytes are kept.
    EXPECT_FALSE(isBlank("\u200B"));
    EXPECT_EQ(trimmed("\u00A0\xFF\u00A0"), "\xFF");
    EXPECT_EQ(trimmed(" \xC2"), "\xC2");
}

TEST(WhitespaceTest, TagsSplitOnTheSameRule) {
    EXPECT_EQ(splitTags("\u00A0web,\u3000, client\u2028,vip"),
              (std::vector<std::string>{"web", "client", "vip"}));
}

} // namespace
} // namespace vorlane
