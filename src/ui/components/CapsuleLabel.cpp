// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/CapsuleLabel.h"

#include "components/CapsuleBadge.h"
#include "components/PaletteColor.h"

#include <QPainter>

namespace vorlane {

CapsuleLabel::CapsuleLabel(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void CapsuleLabel::setBadge(const QString& text, std::string_view symbol, Palette::Color tint) {
    m_text = text;
    m_symbol = symbol;
    m_tint = tint;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize CapsuleLabel::sizeHint() const {
    return CapsuleBadge::sizeFor(m_text, font(), !m_symbol.empty());
}

void CapsuleLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    CapsuleBadge::paint(painter, rect(), m_text, m_symbol, PaletteColor::color(m_tint, palette()),
                        palette());
}

} // namespace vorlane
