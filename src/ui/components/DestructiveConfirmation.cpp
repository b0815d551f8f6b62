// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/DestructiveConfirmation.h"

#include "components/PlainText.h"

#include <QMessageBox>
#include <QPushButton>

namespace vorlane {

void DestructiveConfirmation::ask(QWidget* parent, const QString& title, const QString& message,
                                  const QString& confirmTitle, std::function<void()> onConfirm) {
    auto* box =
        new QMessageBox(QMessageBox::Warning, title, message, QMessageBox::NoButton, parent);
    box->setAccessibleName(title);
    QPushButton* confirm = box->addButton(confirmTitle, QMessageBox::DestructiveRole);
    QPushButton* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    PlainText::apply(*box);
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    box->setWindowModality(Qt::WindowModal);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QMessageBox::buttonClicked, box,
                     [confirm, onConfirm = std::move(onConfirm)](QAbstractButton* clicked) {
                         if (clicked == confirm) {
                             onConfirm();
                         }
                     });
    box->open();
}

} // namespace vorlane
