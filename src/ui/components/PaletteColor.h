// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"

#include <QColor>

class QPalette;

namespace vorlane {

// The named colours of the vault as Qt colours, and the variants that stay legible on the
// desktop's light or dark palette. Main thread only (reads the palette it is given).
class PaletteColor {
public:
    // The named colour; "secondary" is the palette's own secondary text colour, so that it follows
    // the desktop's theme.
    static QColor color(Palette::Color color, const QPalette& palette);
    // True when the palette's base (list background) is dark.
    static bool isDark(const QPalette& palette);
    // `tint` as text or an icon drawn on the palette's base: darkened on light backgrounds (yellow
    // on white is unreadable), lightened a little on dark ones.
    static QColor foreground(const QColor& tint, const QPalette& palette);
    // `tint` as a capsule's or card's fill under such text.
    static QColor fill(const QColor& tint, const QPalette& palette);
};

} // namespace vorlane
