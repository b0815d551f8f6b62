// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ErrorLabel.h"

#include "QtText.h"
#include "components/PaletteColor.h"
#include "components/PlainText.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vorlane {

QLabel* ErrorLabel::create() {
    QLabel* label = PlainText::label();
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(
        QPalette::WindowText,
        PaletteColor::foreground(PaletteColor::color(Palette::Color::red, palette), palette));
    label->setPalette(palette);
    label->hide();
    return label;
}

void ErrorLabel::show(QLabel& label, const std::string& text) {
    label.setText(toQString(text));
    label.setVisible(!text.empty());
}

QWidget* ErrorLabel::under(QWidget* field, QLabel* error) {
    auto* cell = new QWidget;
    auto* layout = new QVBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(field);
    layout->addWidget(error);
    return cell;
}

} // namespace vorlane
