// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/StrengthMeter.h"

#include "QtText.h"
#include "components/PaletteColor.h"

#include <QPainter>
#include <QPainterPath>

namespace vorlane {

namespace {

constexpr int barHeight = 6;

Palette::Color levelColor(PasswordStrength::Level level) {
    switch (level) {
    case PasswordStrength::Level::weak:
        return Palette::Color::red;
    case PasswordStrength::Level::fair:
        return Palette::Color::orange;
    case PasswordStrength::Level::strong:
    case PasswordStrength::Level::veryStrong:
        return Palette::Color::green;
    }
    return Palette::Color::secondary;
}

} // namespace

StrengthMeter::StrengthMeter(QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(QStringLiteral("Password strength"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void StrengthMeter::setEstimate(std::optional<PasswordStrength::Estimate> estimate) {
    m_estimate = estimate;
    setAccessibleDescription(estimate ? toQString(PasswordStrength::summary(*estimate))
                                      : QStringLiteral("No password"));
    update();
}

QSize StrengthMeter::sizeHint() const {
    return {160, barHeight};
}

void StrengthMeter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF track(0, (height() - barHeight) / 2.0, width(), barHeight);
    const qreal radius = barHeight / 2.0;
    QColor empty = palette().color(QPalette::WindowText);
    empty.setAlphaF(0.12);
    painter.setBrush(empty);
    painter.drawRoundedRect(track, radius, radius);
    if (!m_estimate) {
        return;
    }
    // Never drawn thinner than the capsule's own ends, so that a weak password still shows.
    const qreal filled =
        std::max<qreal>(barHeight, track.width() * PasswordStrength::meterFraction(*m_estimate));
    painter.setBrush(PaletteColor::foreground(
        PaletteColor::color(levelColor(m_estimate->level), palette()), palette()));
    painter.drawRoundedRect(QRectF(track.left(), track.top(), filled, barHeight), radius, radius);
}

} // namespace vorlane
