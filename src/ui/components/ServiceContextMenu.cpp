// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/ServiceContextMenu.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "components/PlainText.h"
#include "screens/ServiceRowMenu.h"

#include <QDesktopServices>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

namespace vorlane {

void ServiceContextMenu::exec(AppContext& context, ServiceRecord& service,
                              const std::function<void(ServiceRecord&)>& open, QWidget* parent,
                              const QPoint& globalPosition) {
    ServiceRowMenu model(context, service, open);
    QMenu menu(parent);
    menu.setAccessibleName(QStringLiteral("Service actions"));
    for (const ServiceRowMenu::Item& item : model.items()) {
        if (item.separatorBefore) {
            menu.addSeparator();
        }
        QAction* action = menu.addAction(SymbolIcon::icon(item.icon), toQString(item.title));
        action->setEnabled(item.enabled);
        action->setData(static_cast<int>(item.action));
    }
    const QAction* chosen = menu.exec(globalPosition);
    if (!chosen) {
        return;
    }
    const auto action = static_cast<ServiceRowMenu::Action>(chosen->data().toInt());
    switch (action) {
    case ServiceRowMenu::Action::openURL:
        if (const auto address = model.addressToOpen()) {
            QDesktopServices::openUrl(QUrl(toQString(address.value())));
        } else {
            QMessageBox refused(QMessageBox::Warning, QStringLiteral("Open URL"),
                                toQString(address.error().message), QMessageBox::Ok, parent);
            // The scheme is part of what was pasted: shown as written, never as markup.
            refused.setTextFormat(Qt::PlainText);
            refused.exec();
        }
        return;
    case ServiceRowMenu::Action::deleteService:
        if (confirmDeletion(context, service, parent)) {
            model.deleteService();
        }
        return;
    default:
        model.trigger(action);
        return;
    }
}

bool ServiceContextMenu::confirmDeletion(AppContext& context, ServiceRecord& service,
                                         QWidget* parent) {
    const ServiceRowMenu::Confirmation confirmation =
        ServiceRowMenu(context, service, [](ServiceRecord&) {}).deleteConfirmation();
    QMessageBox box(parent);
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(toQString(confirmation.title));
    box.setText(toQString(confirmation.title));
    box.setInformativeText(toQString(confirmation.message));
    QPushButton* remove =
        box.addButton(toQString(confirmation.confirmTitle), QMessageBox::DestructiveRole);
    QPushButton* cancel =
        box.addButton(toQString(confirmation.cancelTitle), QMessageBox::RejectRole);
    PlainText::apply(box);
    // A stray Return must not delete.
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == remove;
}

} // namespace vorlane
