// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/PaletteColor.h"

#include <QPalette>

namespace vorlane {

QColor PaletteColor::color(Palette::Color color, const QPalette& palette) {
    if (color == Palette::Color::secondary) {
        return palette.color(QPalette::PlaceholderText);
    }
    const Palette::Rgb rgb = Palette::rgb(color);
    return {rgb.red, rgb.green, rgb.blue};
}

bool PaletteColor::isDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightnessF() < 0.5;
}

QColor PaletteColor::foreground(const QColor& tint, const QPalette& palette) {
    // Mixing toward the text colour keeps the hue while giving the contrast a label needs.
    const QColor text = palette.color(QPalette::Text);
    const float share = isDark(palette) ? 0.2F : 0.35F;
    const auto mix = [share](float from, float to) {
        return from + (to - from) * share;
    };
    return QColor::fromRgbF(mix(tint.redF(), text.redF()), mix(tint.greenF(), text.greenF()),
                            mix(tint.blueF(), text.blueF()));
}

QColor PaletteColor::fill(const QColor& tint, const QPalette& palette) {
    QColor fill = tint;
    fill.setAlphaF(isDark(palette) ? 0.28F : 0.16F);
    return fill;
}

} // namespace vorlane
