// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/RenewalView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "components/EmptyStatePages.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "components/ScreenTitle.h"
#include "screens/RenewalListModel.h"
#include "screens/RenewalRowDelegate.h"
#include "store/DataStore.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>

namespace vorlane {

RenewalView::RenewalView(AppContext& context, RenewalFilter filter, Organization* organization,
                         QWidget* parent)
    : QWidget(parent)
    , m_screen(context, filter, organization)
    , m_count(new QLabel)
    , m_pages(new EmptyStatePages)
    , m_list(new RowListView)
    , m_model(new RenewalListModel(this))
    , m_delegate(new RenewalRowDelegate(m_list))
    , m_empty(new EmptyStateView(EmptyState{"calendar.badge.clock", {}, {}, {}})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 0);
    QLabel* title = ScreenTitle::create(toQString(m_screen.title()), ScreenTitle::Kind::list);
    layout->addWidget(title);
    m_count->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_count);
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_delegate);
    m_list->setAccessibleName(toQString(m_screen.title()));
    m_pages->setPages(m_list, m_empty);
    layout->addWidget(m_pages, 1);

    auto* renew = new QAction(toQString(RenewalScreen::markRenewedTitle), m_list);
    renew->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    renew->setShortcutContext(Qt::WidgetShortcut);
    m_list->addAction(renew);
    connect(renew, &QAction::triggered, this, [this] { markRenewed(m_list->currentIndex()); });
    connect(m_list, &RowListView::rowChosen, this, &RenewalView::choose);
    connect(m_list, &RowListView::rowMenuRequested, this, &RenewalView::showRowMenu);
    connect(m_delegate, &RenewalRowDelegate::markRenewedClicked, this, &RenewalView::markRenewed);
    m_storeConnection = ScopedConnection(context.store.changed, [this] {
        m_screen.rebuild();
        showScreen();
    });
    setAccessibleName(toQString(m_screen.title()));
    setFocusProxy(m_list);
    showScreen();
}

void RenewalView::showScreen() {
    m_count->setText(toQString(m_screen.countText()));
    m_model->setBands(m_screen.bands());
    m_pages->showEmptyState(m_screen.emptyState());
}

void RenewalView::choose(const QModelIndex& index) {
    if (m_delegate->takeButtonClick()) {
        return; // the click was on the row's button
    }
    if (const RenewalScreen::Row* row = m_model->row(index)) {
        m_screen.open(*row->service);
    }
}

void RenewalView::markRenewed(const QModelIndex& index) {
    const RenewalScreen::Row* row = m_model->row(index);
    if (row == nullptr) {
        return;
    }
    // After the view has finished with the click: renewing rebuilds the list under it.
    ServiceRecord* service = row->service;
    QTimer::singleShot(0, this, [this, service] { m_screen.markRenewed(*service); });
}

void RenewalView::showRowMenu(const QModelIndex& index, const QPoint& globalPosition) {
    const RenewalScreen::Row* row = m_model->row(index);
    if (row == nullptr) {
        return;
    }
    ServiceRecord* service = row->service;
    QMenu menu(this);
    menu.setAccessibleName(QStringLiteral("Renewal actions"));
    QAction* open = menu.addAction(SymbolIcon::icon("chevron.right"), QStringLiteral("Open"));
    QAction* renew = menu.addAction(toQString(RenewalScreen::markRenewedTitle));
    const QAction* chosen = menu.exec(globalPosition);
    if (chosen == open) {
        m_screen.open(*service);
    } else if (chosen == renew) {
        m_screen.markRenewed(*service);
    }
}

} // namespace vorlane
