// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QRect>
#include <QString>

#include <string_view>

class QFont;
class QPainter;
class QPalette;

namespace vorlane {

// A capsule holding a short text and, optionally, a symbol before it, filled with its colour at
// low opacity and written in that colour: the status pill, the expiration badge, the sidebar's
// counts. Painted, never a widget, so that a list row stays one paint call.
class CapsuleBadge {
public:
    // The capsule's size for `text` in `font` (the symbol adds its width when given).
    static QSize sizeFor(const QString& text, const QFont& font, bool withSymbol);
    // Paints it with its right edge at `rect`'s right, vertically centred in `rect`; returns the
    // rectangle it took.
    static QRect paintRightAligned(QPainter& painter, const QRect& rect, const QString& text,
                                   std::string_view symbol, const QColor& tint,
                                   const QPalette& palette);
    // Paints it to fill `rect` exactly.
    static void paint(QPainter& painter, const QRect& rect, const QString& text,
                      std::string_view symbol, const QColor& tint, const QPalette& palette);
    // The font capsules use: the given font, one step smaller and medium weight.
    static QFont font(const QFont& base);
};

} // namespace vorlane
