// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Decimal.h"

#include <gtest/gtest.h>

namespace vorlane {
namespace {

Decimal dec(std::string_view text) {
    const auto value = Decimal::fromString(text);
    EXPECT_TRUE(value.has_value()) << text;
    return value.value_or(Decimal());
}

TEST(DecimalTest, TextRoundTripIsExact) {
    for (const char* text : {"12.5", "0", "-0.001", "19.99", "1000000", "0.1",
                             "123456789012345678901234567890.12345678"}) {
        EXPECT_EQ(dec(text).toString(), text);
    }
    EXPECT_EQ(dec("12.50").toString(), "12.5");
    EXPECT_EQ(dec("007.10").toString(), "7.1");
    EXPECT_EQ(dec("-0.0").toString(), "0");
    EXPECT_EQ(dec("1200").toString(), "1200");
}

TEST(DecimalTest, RejectsAnythingButPlainDecimalText) {
    for (const char* text : {"", "-", ".5", "5.", "1e3", " 1", "1 ", "1,5", "+1", "--1", "1.2.3",
                             "NaN", "inf", "12.5$"}) {
        EXPECT_FALSE(Decimal::fromString(text).has_value()) << '"' << text << '"';
    }
}

TEST(DecimalTest, SumsOfCentsAreExact) {
    EXPECT_EQ(dec("0.1") + dec("0.2"), dec("0.3"));
    Decimal total;
    for (int i = 0; i < 1000; ++i) {
        total += dec("0.01");
    }
    EXPECT_EQ(total.toString(), "10");
    EXPECT_EQ((dec("19.99") * Decimal(12)).toString(), "239.88");
    EXPECT_EQ((dec("5") - dec("7.25")).toString(), "-2.25");
}

TEST(DecimalTest, DivisionIsDecimalAndRoundedTo38Digits) {
    EXPECT_EQ(dec("240").dividedBy(Decimal(24))->toString(), "10");
    EXPECT_EQ(dec("240").dividedBy(Decimal(12))->toString(), "20");
    EXPECT_EQ(dec("200").dividedBy(Decimal(12))->toString(),
              "16.666666666666666666666666666666666667");
    EXPECT_EQ(dec("1").dividedBy(Decimal(7))->toString(),
              "0.14285714285714285714285714285714285714");
    // The rounded quotient must survive a trip through its own text unchanged.
    const Decimal third = *dec("100").dividedBy(Decimal(3));
    EXPECT_EQ(dec(third.toString()), third);
    EXPECT_FALSE(dec("5").dividedBy(Decimal()).has_value());
}

TEST(DecimalTest, OrdersByValueNotByText) {
    EXPECT_LT(dec("9.99"), dec("10"));
    EXPECT_GT(dec("0.5"), dec("-3"));
    EXPECT_EQ(dec("1.0"), dec("1"));
    EXPECT_TRUE(dec("-0.01").isNegative());
    EXPECT_FALSE(dec("0").isNegative());
    EXPECT_TRUE(Decimal().isZero());
}

} // namespace
} // namespace vorlane
