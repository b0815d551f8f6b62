// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>

#include <string_view>

class QWidget;

namespace vorlane {

// A symbol's icon recoloured in one colour (Breeze icons are monochrome outlines, so this keeps
// their shape): the kind's icon in its tint, a badge's icon in the badge colour. Cached by symbol,
// colour, size and pixel ratio. Main thread only.
class TintedIcon {
public:
    static QPixmap pixmap(std::string_view symbol, int size, const QColor& color,
                          qreal devicePixelRatio);
    // The symbol in `widget`'s button-text colour, for the icons of buttons and field rows: the
    // Breeze theme is fixed, so its dark outlines would vanish on a dark palette otherwise.
    static QIcon ink(std::string_view symbol, const QWidget& widget, int size = 16);
};

} // namespace vorlane
