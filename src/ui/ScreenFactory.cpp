// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScreenFactory.h"

#include "app/AppContext.h"
#include "app/AppState.h"
#include "screens/AllCredentialsView.h"
#include "screens/ArchiveView.h"
#include "screens/DashboardView.h"
#include "screens/ExpenseView.h"
#include "screens/GlobalSearchView.h"
#include "screens/OrganizationDetailView.h"
#include "screens/OrganizationFormSheet.h"
#include "screens/OrganizationGridView.h"
#include "screens/PasswordHealthView.h"
#include "screens/RenewalView.h"
#include "screens/ServiceDetailView.h"
#include "screens/ServiceFormSheet.h"
#include "screens/SettingsView.h"
#include "screens/ShareSheet.h"
#include "screens/SmartPasteSheet.h"

#include <QDialog>
#include <QVBoxLayout>

namespace vorlane {

QWidget* ScreenFactory::createDetailScreen(DetailScreen screen, AppContext& context) {
    switch (screen) {
    case DetailScreen::search:
        return new GlobalSearchView(context);
    case DetailScreen::serviceDetail:
        return new ServiceDetailView(context, *context.state.selectedService());
    case DetailScreen::organizationDetail:
        return new OrganizationDetailView(context, *context.state.selectedOrganization());
    case DetailScreen::dashboard:
        return new DashboardView(context);
    case DetailScreen::organizationGrid:
        return new OrganizationGridView(context, OrganizationFilter::all);
    case DetailScreen::favoritesGrid:
        return new OrganizationGridView(context, OrganizationFilter::favorites);
    case DetailScreen::expiringSoon:
        return new RenewalView(context, RenewalFilter::expiringSoon);
    case DetailScreen::expired:
        return new RenewalView(context, RenewalFilter::expired);
    case DetailScreen::allCredentials:
        return new AllCredentialsView(context);
    case DetailScreen::expenses:
        return new ExpenseView(context);
    case DetailScreen::archive:
        return new ArchiveView(context);
    case DetailScreen::passwordHealth:
        return new PasswordHealthView(context);
    }
    return new DashboardView(context);
}

QDialog* ScreenFactory::createSheet(Sheet sheet, AppContext& context, QWidget* parent) {
    switch (sheet) {
    case Sheet::newOrganization:
        return new OrganizationFormSheet(context, parent);
    case Sheet::newService:
        return new ServiceFormSheet(context, parent);
    case Sheet::smartPaste:
        return new SmartPasteSheet(context, context.state.selectedOrganization(), parent);
    case Sheet::shareFlow:
        if (Organization* organization = context.state.shareOrganization()) {
            return new ShareSheet(context, *organization, context.state.shareServices(), parent);
        }
        // A service without an organization has nothing to share with: the sheet opens empty.
        return new QDialog(parent);
    case Sheet::settings: {
        // The same tabs as the settings window; Escape or the title bar closes it.
        auto* dialog = new QDialog(parent);
        dialog->setWindowTitle(QStringLiteral("Settings"));
        auto* layout = new QVBoxLayout(dialog);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        layout->addWidget(new SettingsView(context));
        return dialog;
    }
    }
    return nullptr;
}

QWidget* ScreenFactory::createSettingsWindow(AppContext& context) {
    auto* window = new SettingsView(context);
    window->setWindowTitle(QStringLiteral("Settings"));
    return window;
}

} // namespace vorlane
