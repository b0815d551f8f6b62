#include "components/StatCard.h"

#include "components/PaletteColor.h"
#include "components/TintedIcon.h"

#include <QPainter>
#include <QPainterPath>

#include <utility>

namespace vorlane {

namespace {

constexpr int padding = 16;
constexpr int iconSize = 22;
constexpr int cornerRadius = 10;

QFont valueFont(const QFont& base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 1.8);
    font.setWeight(QFont::Bold);
    return font;
}

} // namespace

StatCard::StatCard(const QString& title, const QString& value, std::string symbol,
                   Palette::Color color, QWidget* parent)
    : QWidget(parent)
    , m_title(title)
    , m_value(value)
    , m_symbol(std::move(symbol))
    , m_color(color) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    updateAccessibleName();
}

void StatCard::setValue(const QString& value) {
    m_value = value;
    updateAccessibleName();
    update();
}

void StatCard::updateAccessibleName() {
    setAccessibleName(QStringLiteral("%1: %2").arg(m_title, m_value));
}

QSize StatCard::sizeHint() const {
    const QFontMetrics value(valueFont(font()));
    const QFontMetrics title(font());
    const int width = qMax(value.horizontalAdvance(m_value), title.horizontalAdvance(m_title));
    return {qMax(160, width + 2 * padding + iconSize + 8),
            2 * padding + iconSize + 8 + value.height() + title.height()};
}

QSize StatCard::minimumSizeHint() const {
    return {120, sizeHint().height()};
}

void StatCard::paintEvent(QPaintEvent* event) {
    (void)event;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = palette();
    const QRectF card = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath path;
    path.addRoundedRect(card, cornerRadius, cornerRadius);
    painter.fillPath(path, pal.color(QPalette::Base));
    const QColor tint = PaletteColor::color(m_color, pal);
    QColor border = tint;
    border.setAlphaF(0.35F);
    painter.setPen(QPen(border, 1));
    painter.drawPath(path);

    const QColor foreground = PaletteColor::foreground(tint, pal);
    painter.drawPixmap(padding, padding,
                       TintedIcon::pixmap(m_symbol, iconSize, foreground, devicePixelRatioF()));
    const QFont big = valueFont(font());
    const QFontMetrics bigMetrics(big);
    const QFontMetrics smallMetrics(font());
    const int valueTop = padding + iconSize + 8;
    const int textWidth = width() - 2 * padding;
    painter.setFont(big);
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(QRect(padding, valueTop, textWidth, bigMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     bigMetrics.elidedText(m_value, Qt::ElideRight, textWidth));
    painter.setFont(font());
    painter.setPen(pal.color(QPalette::PlaceholderText));
    painter.drawText(
        QRect(padding, valueTop + bigMetrics.height(), textWidth, smallMetrics.height()),
        Qt::AlignLeft | Qt::AlignVCenter,
        smallMetrics.elidedText(m_title, Qt::ElideRight, textWidth));
}

} // namespace vorlane
