// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/Decimal.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <algorithm>
#include <new>
#include <string>

namespace vorlane {

namespace {

using Number = boost::multiprecision::number<boost::multiprecision::cpp_dec_float<38>,
                                             boost::multiprecision::et_off>;
constexpr int significantDigits = 38;

bool isPlainDecimal(std::string_view text) {
    std::size_t i = 0;
    if (i < text.size() && text[i] == '-') {
        ++i;
    }
    const auto isDigit = [](char c) {
        return c >= '0' && c <= '9';
    };
    const std::size_t integerStart = i;
    while (i < text.size() && isDigit(text[i])) {
        ++i;
    }
    if (i == integerStart) {
        return false;
    }
    if (i == text.size()) {
        return true;
    }
    if (text[i] != '.') {
        return false;
    }
    const std::size_t fractionStart = ++i;
    while (i < text.size() && isDigit(text[i])) {
        ++i;
    }
    return i > fractionStart && i == text.size();
}

} // namespace

struct Decimal::Access {
    static_assert(sizeof(Number) <= sizeof(Decimal::m_storage));
    static_assert(alignof(Number) <= 8);

    static Number& number(Decimal& d) {
        return *std::launder(reinterpret_cast<Number*>(d.m_storage.data()));
    }
    static const Number& number(const Decimal& d) {
        return *std::launder(reinterpret_cast<const Number*>(d.m_storage.data()));
    }
    static Decimal make(Number&& n) {
        Decimal d;
        number(d) = std::move(n);
        return d;
    }
};

Decimal::Decimal() {
    new (m_storage.data()) Number(0);
}

Decimal::Decimal(std::int64_t value) {
    new (m_storage.data()) Number(value);
}

Decimal::Decimal(const Decimal& other) {
    new (m_storage.data()) Number(Access::number(other));
}

Decimal& Decimal::operator=(const Decimal& other) {
    Access::number(*this) = Access::number(other);
    return *this;
}

Decimal::~Decimal() {
    Access::number(*this).~Number();
}

std::optional<Decimal> Decimal::fromString(std::string_view text) {
    if (!isPlainDecimal(text)) {
        return std::nullopt;
    }
    return Access::make(Number(std::string(text)));
}

std::string Decimal::toString() const {
    const Number& n = Access::number(*this);
    if (n.is_zero()) {
        return "0";
    }
    // Scientific form with exactly 38 significant digits, e.g. "-1.2500...0e+01"; rebuilt below as
    // plain text so that no exponent and no binary rounding ever reaches the user or the file.
    const std::string scientific = n.str(significantDigits - 1, std::ios_base::scientific);
    const bool negative = scientific.front() == '-';
    const std::size_t mantissaStart = negative ? 1 : 0;
    const std::size_t e = scientific.find('e');
    std::string digits;
    for (std::size_t i = mantissaStart; i < e; ++i) {
        if (scientific[i] != '.') {
            digits.push_back(scientific[i]);
        }
    }
    const int exponent = std::stoi(scientific.substr(e + 1));
    while (digits.size() > 1 && digits.back() == '0') {
        digits.pop_back();
    }

    std::string result = negative ? "-" : "";
    const int integerDigits = exponent + 1;
    if (integerDigits <= 0) {
        result += "0.";
        result.append(static_cast<std::size_t>(-integerDigits), '0');
        result += digits;
    } else if (static_cast<std::size_t>(integerDigits) >= digits.size()) {
        result += digits;
        result.append(static_cast<std::size_t>(integerDigits) - digits.size(), '0');
    } else {
        result += digits.substr(0, static_cast<std::size_t>(integerDigits));
        result += '.';
        result += digits.substr(static_cast<std::size_t>(integerDigits));
    }
    return result;
}

bool Decimal::isZero() const {
    return Access::number(*this).is_zero();
}

bool Decimal::isNegative() const {
    return Access::number(*this).sign() < 0;
}

Decimal Decimal::operator+(const Decimal& other) const {
    return Access::make(Access::number(*this) + Access::number(other));
}

Decimal Decimal::operator-(const Decimal& other) const {
    return Access::make(Access::number(*this) - Access::number(other));
}

Decimal Decimal::operator*(const Decimal& other) const {
    return Access::make(Access::number(*this) * Access::number(other));
}

std::optional<Decimal> Decimal::dividedBy(const Decimal& divisor) const {
    if (divisor.isZero()) {
        return std::nullopt;
    }
    // Round the quotient to the digits we keep, so that 1 / 3 * 3 compares equal to what a
    // round trip through the text form gives.
    const Number quotient = Access::number(*this) / Access::number(divisor);
    return Access::make(Number(quotient.str(significantDigits - 1, std::ios_base::scientific)));
}

Decimal& Decimal::operator+=(const Decimal& other) {
    Access::number(*this) += Access::number(other);
    return *this;
}

bool operator==(const Decimal& a, const Decimal& b) {
    return Decimal::Access::number(a) == Decimal::Access::number(b);
}

std::strong_ordering operator<=>(const Decimal& a, const Decimal& b) {
    const auto& x = Decimal::Access::number(a);
    const auto& y = Decimal::Access::number(b);
    if (x < y) {
        return std::strong_ordering::less;
    }
    if (y < x) {
        return std::strong_ordering::greater;
    }
    return std::strong_ordering::equal;
}

} // namespace vorlane
