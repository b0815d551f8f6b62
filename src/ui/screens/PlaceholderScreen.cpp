#include "screens/PlaceholderScreen.h"

#include "SymbolIcon.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vorlane {

PlaceholderScreen::PlaceholderScreen(std::string_view symbol, const QString& title, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    auto* icon = new QLabel;
    icon->setPixmap(SymbolIcon::icon(symbol).pixmap(64, 64));
    icon->setAlignment(Qt::AlignCenter);
    auto* heading = new QLabel(title);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    heading->setFont(font);
    heading->setAlignment(Qt::AlignCenter);
    layout->addStretch();
    layout->addWidget(icon);
    layout->addWidget(heading);
    layout->addStretch();
    setAccessibleName(title);
}

} // namespace vorlane
