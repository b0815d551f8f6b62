// SPDX-License-Identifier: GPL-3.0-or-later
// Which theme icons take a tint: a tint must keep a one-colour symbol's shape (Breeze's grey
// actions, its green key) and leave a full-colour icon alone rather than flatten it into a blob.

#include "components/TintedIcon.h"

#include <QColor>
#include <QImage>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

namespace vorlane {
namespace {

// How many of the symbol's opaque pixels, drawn at a row's size, are not the tint's colour (give
// or take the rounding of premultiplied alpha).
int pixelsOffTint(std::string_view symbol, const QColor& tint) {
    const QImage image =
        TintedIcon::pixmap(symbol, 16, tint, 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
    int off = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            off += qAlpha(pixel) >= 128 && (std::abs(qRed(pixel) - tint.red()) > 2 ||
                                            std::abs(qGreen(pixel) - tint.green()) > 2 ||
                                            std::abs(qBlue(pixel) - tint.blue()) > 2);
        }
    }
    return off;
}

TEST(TintedIconTest, OneColourSymbolsTakeTheTintAndFullColourIconsKeepTheirs) {
    const QColor tint(200, 30, 90);
    // A grey action and a symbol Breeze draws in green alone: both wholly in the tint.
    for (const std::string_view symbol : {"magnifyingglass", "key"}) {
        EXPECT_EQ(pixelsOffTint(symbol, tint), 0) << symbol;
    }
    // A full-colour application icon keeps its colours.
    EXPECT_GT(pixelsOffTint("w.circle", tint), 20);
}

} // namespace
} // namespace vorlane
