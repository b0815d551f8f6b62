// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/AllCredentialsView.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "components/EmptyStatePages.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "components/ScreenTitle.h"
#include "components/ServiceContextMenu.h"
#include "components/ServiceListModel.h"
#include "components/ServiceRowDelegate.h"
#include "components/ServiceTypePicker.h"
#include "store/DataStore.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace vorlane {

AllCredentialsView::AllCredentialsView(AppContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context)
    , m_typeFilter(new ServiceTypePicker(AllCredentialsScreen::allTypesTitle))
    , m_statusFilter(new QComboBox)
    , m_count(new QLabel)
    , m_pages(new EmptyStatePages)
    , m_content(new QWidget)
    , m_list(new RowListView)
    , m_model(new ServiceListModel(context.calendar, this))
    , m_empty(new EmptyStateView(EmptyState{"key", {}, {}, {}})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 0);
    QLabel* title =
        ScreenTitle::create(toQString(AllCredentialsScreen::title), ScreenTitle::Kind::list);
    layout->addWidget(title);

    auto* contentLayout = new QVBoxLayout(m_content);
    contentLayout->setContentsMargins(0, 0, 0, 0);
    auto* filterBar = new QHBoxLayout;
    auto* typeLabel = new QLabel(toQString(AllCredentialsScreen::typeFilterTitle));
    typeLabel->setBuddy(m_typeFilter);
    m_typeFilter->setFixedWidth(180);
    filterBar->addWidget(typeLabel);
    filterBar->addWidget(m_typeFilter);
    auto* statusLabel = new QLabel(toQString(AllCredentialsScreen::statusFilterTitle));
    statusLabel->setBuddy(m_statusFilter);
    m_statusFilter->addItem(toQString(AllCredentialsScreen::allStatusesTitle));
    m_statusFilter->insertSeparator(m_statusFilter->count());
    for (const ServiceStatus status : ServiceStatus::allCases()) {
        m_statusFilter->addItem(toQString(status.displayName()), toQString(status.rawValue()));
    }
    m_statusFilter->setFixedWidth(150);
    filterBar->addSpacing(8);
    filterBar->addWidget(statusLabel);
    filterBar->addWidget(m_statusFilter);
    filterBar->addStretch();
    m_count->setForegroundRole(QPalette::PlaceholderText);
    filterBar->addWidget(m_count);
    contentLayout->addLayout(filterBar);
    m_list->setModel(m_model);
    m_list->setItemDelegate(new ServiceRowDelegate(m_list));
    m_list->setAccessibleName(toQString(AllCredentialsScreen::title));
    contentLayout->addWidget(m_list, 1);
    m_pages->setPages(m_content, m_empty);
    layout->addWidget(m_pages, 1);

    connect(m_typeFilter, &ServiceTypePicker::typeChanged, this,
            [this](std::optional<ServiceType> type) {
                m_screen.setTypeFilter(type);
                showScreen();
            });
    connect(m_statusFilter, &QComboBox::currentIndexChanged, this, [this] {
        m_screen.setStatusFilter(
            ServiceStatus::fromRaw(toStdString(m_statusFilter->currentData().toString())));
        showScreen();
    });
    connect(m_empty, &EmptyStateView::actionTriggered, this, [this] { m_screen.addService(); });
    connect(m_list, &RowListView::rowChosen, this, [this](const QModelIndex& index) {
        if (ServiceRecord* service = m_model->service(index)) {
            m_screen.open(*service);
        }
    });
    connect(m_list, &RowListView::rowMenuRequested, this,
            [this](const QModelIndex& index, const QPoint& globalPosition) {
                if (ServiceRecord* service = m_model->service(index)) {
                    ServiceContextMenu::exec(
                        m_context, *service,
                        [this](ServiceRecord& chosen) { m_screen.open(chosen); }, this,
                        globalPosition);
                }
            });
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] {
        m_screen.rebuild();
        showScreen();
    });
    setAccessibleName(toQString(AllCredentialsScreen::title));
    setFocusProxy(m_list);
    showScreen();
}

void AllCredentialsView::showScreen() {
    m_model->setServices(m_screen.rows());
    m_count->setText(toQString(m_screen.countText()));
    m_pages->showEmptyState(m_screen.emptyState());
}

} // namespace vorlane
