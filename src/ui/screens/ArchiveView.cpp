// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ArchiveView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "components/EmptyStatePages.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "components/ScreenTitle.h"
#include "components/SectionedListModel.h"
#include "components/SectionedRowDelegate.h"
#include "components/ServiceContextMenu.h"
#include "store/DataStore.h"

#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

namespace vorlane {

ArchiveView::ArchiveView(AppContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context)
    , m_pages(new EmptyStatePages)
    , m_list(new RowListView)
    , m_model(new SectionedListModel(context.store, context.calendar, this))
    , m_empty(new EmptyStateView(EmptyState{"archivebox", {}, {}, {}})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 0);
    QLabel* title = ScreenTitle::create(toQString(ArchiveScreen::title), ScreenTitle::Kind::list);
    layout->addWidget(title);
    m_list->setModel(m_model);
    m_list->setItemDelegate(new SectionedRowDelegate(m_list));
    m_list->setAccessibleName(toQString(ArchiveScreen::title));
    m_pages->setPages(m_list, m_empty);
    layout->addWidget(m_pages, 1);

    // Archive rows have no action of their own: everything goes through their menus.
    connect(m_list, &RowListView::rowMenuRequested, this, &ArchiveView::showRowMenu);
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] {
        m_screen.rebuild();
        showScreen();
    });
    setAccessibleName(toQString(ArchiveScreen::title));
    setFocusProxy(m_list);
    showScreen();
}

void ArchiveView::showScreen() {
    std::vector<SectionedListModel::Section> sections;
    sections.push_back(
        {toQString(ArchiveScreen::organizationsTitle), m_screen.organizations(), {}});
    sections.push_back({toQString(ArchiveScreen::servicesTitle), {}, m_screen.services()});
    m_model->setSections(std::move(sections));
    m_pages->showEmptyState(m_screen.emptyState());
}

void ArchiveView::showRowMenu(const QModelIndex& index, const QPoint& globalPosition) {
    if (Organization* organization = m_model->organization(index)) {
        showOrganizationMenu(*organization, globalPosition);
    } else if (ServiceRecord* service = m_model->service(index)) {
        ServiceContextMenu::exec(
            m_context, *service, [this](ServiceRecord& chosen) { m_screen.open(chosen); }, this,
            globalPosition);
    }
}

void ArchiveView::showOrganizationMenu(Organization& organization, const QPoint& globalPosition) {
    QMenu menu(this);
    menu.setAccessibleName(QStringLiteral("Organization actions"));
    for (const OrganizationActions::MenuItem& item : m_screen.organizationMenu(organization)) {
        if (!item.action) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(SymbolIcon::icon(item.icon), toQString(item.title));
        action->setData(static_cast<int>(*item.action));
    }
    if (const QAction* chosen = menu.exec(globalPosition)) {
        m_screen.perform(static_cast<OrganizationActions::Action>(chosen->data().toInt()),
                         organization);
    }
}

} // namespace vorlane
