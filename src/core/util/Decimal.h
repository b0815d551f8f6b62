// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorlane {

// An exact decimal number for money: 38 significant digits, decimal (not binary) arithmetic, so
// "12.5" stays 12.5 and sums of cents are exact. The arithmetic is Boost.Multiprecision's
// cpp_dec_float, kept out of this header so that every user of a record does not compile it.
class Decimal {
public:
    Decimal();
    explicit Decimal(std::int64_t value);
    Decimal(const Decimal& other);
    Decimal& operator=(const Decimal& other);
    ~Decimal();

    // Plain decimal text: an optional "-", digits, optionally "." and more digits ("12", "-0.5",
    // "12.50"). Anything else (exponents, spaces, separators, "", ".5") gives nothing.
    static std::optional<Decimal> fromString(std::string_view text);

    // Shortest exact text that reads back to the same value: no exponent, no trailing fraction
    // zeros, no "-0" ("12.50" gives "12.5", "240" / "24" gives "10").
    std::string toString() const;

    bool isZero() const;
    bool isNegative() const;

    Decimal operator+(const Decimal& other) const;
    Decimal operator-(const Decimal& other) const;
    Decimal operator*(const Decimal& other) const;
    // Decimal division rounded to 38 significant digits. Dividing by zero gives nothing.
    std::optional<Decimal> dividedBy(const Decimal& divisor) const;
    Decimal& operator+=(const Decimal& other);

    friend bool operator==(const Decimal& a, const Decimal& b);
    friend std::strong_ordering operator<=>(const Decimal& a, const Decimal& b);

private:
    struct Access;
    // Storage for the Boost number; its size and alignment are checked where it is defined.
    alignas(8) std::array<std::byte, 48> m_storage;
};

} // namespace vorlane
