#pragma once

#include <QColor>
#include <QPixmap>

#include <string_view>

namespace vorlane {

// A symbol's icon recoloured in one colour (Breeze icons are monochrome outlines, so this keeps
// their shape): the kind's icon in its tint, a badge's icon in the badge colour. Cached by symbol,
// colour, size and pixel ratio. Main thread only.
class TintedIcon {
public:
    static QPixmap pixmap(std::string_view symbol, int size, const QColor& color,
                          qreal devicePixelRatio);
};

} // namespace vorlane
