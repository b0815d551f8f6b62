// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ScreenTitle.h"

#include "components/PlainText.h"

#include <QLabel>

namespace vorlane {

QLabel* ScreenTitle::create(const QString& text, Kind kind) {
    auto* title = PlainText::label(text);
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * (kind == Kind::overview ? 1.8 : 1.5));
    font.setWeight(kind == Kind::overview ? QFont::Bold : QFont::DemiBold);
    title->setFont(font);
    return title;
}

} // namespace vorlane
