// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/PlainText.h"

#include <QLabel>
#include <QMessageBox>
#include <QTextDocument>

namespace vorlane {

QLabel* PlainText::label(const QString& text) {
    auto* label = new QLabel;
    apply(*label);
    label->setText(text);
    return label;
}

void PlainText::apply(QLabel& label) {
    label.setTextFormat(Qt::PlainText);
}

void PlainText::apply(QMessageBox& box) {
    box.setTextFormat(Qt::PlainText);
    // QMessageBox gives the format to its main label only; the informative text has a label of
    // its own that stays in AutoText.
    for (QLabel* label : box.findChildren<QLabel*>()) {
        apply(*label);
    }
}

void PlainText::applySecret(QLabel& label) {
    apply(label);
    // Without any text interaction the label makes no text control, so it has no menu either.
    label.setTextInteractionFlags(Qt::NoTextInteraction);
}

QString PlainText::escaped(const QString& text) {
    QString html = text.toHtmlEscaped();
    html.replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    return html;
}

QString PlainText::toolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

} // namespace vorlane
