// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

namespace vorlane {

// The named colours that enumerations and records use for tints, with the fixed RGB values the
// screens paint them in. Fixed on purpose: a service kind keeps its colour on every desktop theme.
class Palette {
public:
    enum class Color : std::uint8_t {
        indigo,
        blue,
        teal,
        cyan,
        purple,
        orange,
        mint,
        gray,
        pink,
        green,
        yellow,
        red,
        secondary,
    };

    struct Rgb {
        std::uint8_t red;
        std::uint8_t green;
        std::uint8_t blue;
        friend constexpr bool operator==(Rgb, Rgb) = default;
    };

    // "indigo", "secondary" and so on.
    static std::string_view name(Color color);
    static Rgb rgb(Color color);
};

} // namespace vorlane
