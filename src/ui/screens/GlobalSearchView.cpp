// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/GlobalSearchView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "components/EmptyStatePages.h"
#include "components/EmptyStateView.h"
#include "components/PlainText.h"
#include "components/RowListView.h"
#include "components/ScreenTitle.h"
#include "components/SectionedListModel.h"
#include "components/SectionedRowDelegate.h"
#include "components/ServiceContextMenu.h"
#include "components/ServiceTypePicker.h"
#include "store/DataStore.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace vorlane {

GlobalSearchView::GlobalSearchView(AppContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context)
    , m_title(ScreenTitle::create(QString(), ScreenTitle::Kind::list))
    , m_count(new QLabel)
    , m_typeFilter(new ServiceTypePicker(GlobalSearchScreen::allTypesTitle))
    , m_pages(new EmptyStatePages)
    , m_list(new RowListView)
    , m_model(new SectionedListModel(context.store, context.calendar, this))
    , m_empty(new EmptyStateView(EmptyState{GlobalSearchScreen::icon, {}, {}, {}})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 0);
    layout->setSpacing(8);

    auto* header = new QHBoxLayout;
    auto* icon = new QLabel;
    icon->setPixmap(SymbolIcon::icon(GlobalSearchScreen::icon).pixmap(22, 22));
    header->addWidget(icon);
    PlainText::apply(*m_title);
    header->addWidget(m_title, 1);
    m_count->setForegroundRole(QPalette::PlaceholderText);
    header->addWidget(m_count);
    layout->addLayout(header);

    auto* filterRow = new QHBoxLayout;
    auto* filterLabel = new QLabel(toQString(GlobalSearchScreen::typeFilterTitle));
    filterLabel->setBuddy(m_typeFilter);
    m_typeFilter->setFixedWidth(200);
    filterRow->addWidget(filterLabel);
    filterRow->addWidget(m_typeFilter);
    filterRow->addStretch();
    layout->addLayout(filterRow);

    m_list->setModel(m_model);
    m_list->setItemDelegate(new SectionedRowDelegate(m_list));
    m_list->setAccessibleName(QStringLiteral("Search results"));
    m_pages->setPages(m_list, m_empty);
    layout->addWidget(m_pages, 1);

    connect(m_typeFilter, &ServiceTypePicker::typeChanged, this,
            [this](std::optional<ServiceType> type) {
                m_screen.setTypeFilter(type);
                showScreen();
            });
    connect(m_list, &RowListView::rowChosen, this, &GlobalSearchView::chooseRow);
    connect(m_list, &RowListView::rowMenuRequested, this, &GlobalSearchView::showRowMenu);
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] { rebuild(); });
    // Typing changes the query; anything else in the navigation state leaves the results alone.
    m_stateConnection = ScopedConnection(m_context.state.changed, [this] {
        if (m_context.state.searchQuery() != m_screen.query()) {
            rebuild();
        }
    });
    setFocusProxy(m_list);
    showScreen();
}

void GlobalSearchView::rebuild() {
    m_screen.rebuild();
    showScreen();
}

void GlobalSearchView::showScreen() {
    m_title->setText(toQString(m_screen.headerTitle()));
    m_count->setText(toQString(m_screen.countText()));
    std::vector<SectionedListModel::Section> sections;
    sections.push_back(
        {toQString(GlobalSearchScreen::organizationsTitle), m_screen.organizations(), {}});
    sections.push_back({toQString(GlobalSearchScreen::servicesTitle), {}, m_screen.services()});
    m_model->setSections(std::move(sections));
    m_pages->showEmptyState(m_screen.emptyState());
    setAccessibleName(m_title->text());
}

void GlobalSearchView::chooseRow(const QModelIndex& index) {
    if (Organization* organization = m_model->organization(index)) {
        m_screen.open(*organization);
    } else if (ServiceRecord* service = m_model->service(index)) {
        m_screen.open(*service);
    }
}

void GlobalSearchView::showRowMenu(const QModelIndex& index, const QPoint& globalPosition) {
    if (ServiceRecord* service = m_model->service(index)) {
        ServiceContextMenu::exec(
            m_context, *service, [this](ServiceRecord& chosen) { m_screen.open(chosen); }, this,
            globalPosition);
    }
}

} // namespace vorlane
