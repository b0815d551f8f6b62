// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/SidebarView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "auth/AuthManager.h"
#include "screens/SidebarDelegate.h"
#include "screens/SidebarListModel.h"
#include "store/DataStore.h"
#include "util/UserCalendar.h"

#include <QListView>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace vorlane {

SidebarView::SidebarView(AppContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_model(context.store, context.calendar, context.state)
    , m_rows(new SidebarListModel(m_model, this))
    , m_list(new QListView)
    , m_newOrganization(new QToolButton) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);

    m_list->setModel(m_rows);
    m_list->setItemDelegate(new SidebarDelegate(context.store, *m_rows, m_list));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMouseTracking(true);
    m_list->setAccessibleName(QStringLiteral("Sidebar"));
    // The sidebar sits on the window's colour, not on a white list background.
    m_list->viewport()->setBackgroundRole(QPalette::Window);
    m_list->setBackgroundRole(QPalette::Window);
    layout->addWidget(m_list, 1);

    m_newOrganization->setText(toQString(SidebarModel::footerTitle));
    m_newOrganization->setIcon(SymbolIcon::icon(SidebarModel::footerIcon));
    m_newOrganization->setToolTip(toQString(SidebarModel::footerToolTip));
    m_newOrganization->setAccessibleName(toQString(SidebarModel::footerTitle));
    m_newOrganization->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_newOrganization->setAutoRaise(true);
    m_newOrganization->setFocusPolicy(Qt::StrongFocus);
    // Plain and in the secondary colour: a quiet action under the list.
    QPalette quiet = m_newOrganization->palette();
    quiet.setColor(QPalette::ButtonText, quiet.color(QPalette::PlaceholderText));
    m_newOrganization->setPalette(quiet);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(4, 0, 0, 0);
    footer->addWidget(m_newOrganization);
    footer->addStretch(1);
    layout->addLayout(footer);
    connect(m_newOrganization, &QToolButton::clicked, this, [this] { m_model.newOrganization(); });

    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { rowChosen(current); });
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex& index) {
        rowChosen(index);
        rowActivated(index);
    });
    connect(m_list, &QListView::activated, this,
            [this](const QModelIndex& index) { rowActivated(index); });

    m_stateConnection = ScopedConnection(m_context.state.changed, [this] {
        showSelection();
        if (m_context.state.passwordHealthFindings() != m_shownFindings) {
            m_shownFindings = m_context.state.passwordHealthFindings();
            scheduleRefresh();
        }
    });
    // A count of findings says something about the secrets: it goes with the lock.
    m_lockConnection = ScopedConnection(
        m_context.auth.locked, [this] { m_context.state.setPasswordHealthFindings(std::nullopt); });
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] { scheduleRefresh(); });
    showSelection();
    setFocusProxy(m_list);
}

SidebarView::~SidebarView() {
    m_storeConnection.reset();
    m_lockConnection.reset();
    m_stateConnection.reset();
}

void SidebarView::scheduleRefresh() {
    // Editing a record notes a change per field; the counts are worked out once per burst.
    if (m_refreshPending) {
        return;
    }
    m_refreshPending = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshPending = false;
        m_rows->refresh();
        showSelection();
    });
}

void SidebarView::rowChosen(const QModelIndex& index) {
    if (!index.isValid()) {
        return;
    }
    const SidebarModel::Row& row = m_rows->row(index.row());
    if (row.kind == SidebarModel::RowKind::destination) {
        m_model.choose(row.item);
    }
}

void SidebarView::rowActivated(const QModelIndex& index) {
    if (!index.isValid()) {
        return;
    }
    const SidebarModel::Row& row = m_rows->row(index.row());
    if (row.kind == SidebarModel::RowKind::organization && row.organization != nullptr) {
        m_model.openOrganization(*row.organization);
    }
}

void SidebarView::showSelection() {
    const SidebarItem item = m_context.state.selectedSidebarItem();
    const QModelIndex current = m_list->currentIndex();
    // The keyboard cursor may rest on a quick-list row, which is not a destination: leave it there
    // until the destination really changes.
    if (current.isValid() &&
        m_rows->row(current.row()).kind == SidebarModel::RowKind::organization &&
        m_shownItem == item) {
        return;
    }
    m_shownItem = item;
    const int row = m_rows->rowOf(item);
    if (row >= 0 && current.row() != row) {
        m_list->setCurrentIndex(m_rows->index(row));
    }
}

} // namespace vorlane
