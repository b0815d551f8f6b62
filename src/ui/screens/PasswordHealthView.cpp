// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/PasswordHealthView.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "auth/AuthManager.h"
#include "components/EmptyStatePages.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "components/ScreenTitle.h"
#include "components/SectionedRowDelegate.h"
#include "screens/PasswordHealthListModel.h"
#include "store/DataStore.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vorlane {

PasswordHealthView::PasswordHealthView(AppContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context, context.store.keychain())
    , m_counts(new QLabel)
    , m_pages(new EmptyStatePages)
    , m_list(new RowListView)
    , m_model(new PasswordHealthListModel(context.store, context.calendar, this))
    , m_empty(new EmptyStateView(*m_screen.emptyState())) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 0);
    layout->addWidget(
        ScreenTitle::create(toQString(PasswordHealthScreen::title), ScreenTitle::Kind::list));
    m_counts->setAccessibleName(QStringLiteral("Password findings"));
    m_counts->setTextFormat(Qt::PlainText);
    layout->addWidget(m_counts);
    m_list->setModel(m_model);
    m_list->setItemDelegate(new SectionedRowDelegate(m_list));
    m_list->setAccessibleName(QStringLiteral("Password findings by kind"));
    m_pages->setPages(m_list, m_empty);
    layout->addWidget(m_pages, 1);
    if (QPushButton* button = m_empty->actionButton()) {
        button->setAccessibleName(toQString(PasswordHealthScreen::authenticateReason));
    }

    connect(m_empty, &EmptyStateView::actionTriggered, this, [this] { m_screen.authenticate(); });
    connect(m_list, &RowListView::rowChosen, this, [this](const QModelIndex& index) {
        if (const PasswordHealthScreen::Row* row = m_model->row(index)) {
            m_screen.open(*row);
        }
    });
    m_screenConnection = ScopedConnection(m_screen.changed, [this] {
        m_context.state.setPasswordHealthFindings(m_screen.findingsCount());
        showScreen();
    });
    m_lockConnection = ScopedConnection(m_context.auth.locked, [this] { m_screen.clear(); });
    setAccessibleName(toQString(PasswordHealthScreen::title));
    setFocusProxy(m_list);
    showScreen();
}

PasswordHealthView::~PasswordHealthView() {
    m_lockConnection.reset();
    m_screenConnection.reset();
}

void PasswordHealthView::showScreen() {
    m_counts->setText(toQString(m_screen.countsText()));
    m_counts->setVisible(m_screen.hasReport());
    m_model->setSections(m_screen.sections());
    m_pages->showEmptyState(m_screen.emptyState());
}

} // namespace vorlane
