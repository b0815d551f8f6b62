// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Palette.h"

#include <QImage>
#include <QPixmap>
#include <QString>

class QPainter;
class QRectF;

namespace vorlane {

class DataStore;
struct Organization;

// An organization's avatar at any size: its logo filling a square clipped to a rounded rectangle
// (corner radius 0.22 × size), or, without a logo or when the bytes do not decode, its initials in
// white on a gradient of its avatar colour. Used by the sidebar, the organization rows and cards
// and the organization detail. Main thread only.
class OrgAvatar {
public:
    // Avatars are drawn at 56 logical pixels at most; logos are decoded to that at a device
    // pixel ratio of up to 3, never at the size the file asks for.
    static constexpr int largestDecodedSide = 168;

    // The organization's decoded logo, read through the store (which loads the bytes on first
    // use) and decoded scaled down to `largestDecodedSide`; a null image when there is none or
    // the bytes are not an image. Decoded logos are cached by their bytes, so an edited logo is
    // decoded afresh.
    static QImage logo(DataStore& store, Organization& organization);

    // Decodes image bytes scaled down (never up) to fit `bound` in the way `mode` says, asking
    // the decoder for that size rather than decoding the full image first where it can.
    static QImage decode(const QByteArray& bytes, const QSize& bound, Qt::AspectRatioMode mode);

    // Paints the avatar into `square` (its smaller side is the size).
    static void paint(QPainter& painter, const QRectF& square, const QImage& logo,
                      const QString& initials, Palette::Color color);
    static void paint(QPainter& painter, const QRectF& square, DataStore& store,
                      Organization& organization);

    // The avatar as a pixmap of `size` logical pixels, for icons and labels.
    static QPixmap pixmap(DataStore& store, Organization& organization, int size,
                          qreal devicePixelRatio);
};

} // namespace vorlane
