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
#include <QFrame>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
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
    , m_empty(new EmptyStateView(EmptyState{"calendar.badge.clock", {}, {}, {}}))
    , m_noticeBar(new QFrame)
    , m_notice(new QLabel)
    , m_editAmount(new QPushButton(toQString(RenewalScreen::editAmountTitle))) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 0);
    QLabel* title = ScreenTitle::create(toQString(m_screen.title()), ScreenTitle::Kind::list);
    layout->addWidget(title);
    m_count->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_count);
    m_noticeBar->setFrameShape(QFrame::StyledPanel);
    auto* noticeLayout = new QHBoxLayout(m_noticeBar);
    noticeLayout->setContentsMargins(12, 6, 6, 6);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->setAccessibleName(QStringLiteral("Renewal recorded"));
    noticeLayout->addWidget(m_notice, 1);
    noticeLayout->addWidget(m_editAmount);
    m_noticeBar->hide();
    layout->addWidget(m_noticeBar);
    connect(m_editAmount, &QPushButton::clicked, this, &RenewalView::editAmount);
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
    const std::optional<std::string> notice = m_screen.renewalNotice();
    m_notice->setText(notice ? toQString(*notice) : QString());
    m_noticeBar->setVisible(notice.has_value());
}

void RenewalView::editAmount() {
    QString label = QStringLiteral("Amount recorded for this renewal:");
    QString text = toQString(m_screen.renewalAmountText());
    for (;;) {
        bool accepted = false;
        text = QInputDialog::getText(this, toQString(RenewalScreen::editAmountTitle), label,
                                     QLineEdit::Normal, text, &accepted);
        if (!accepted) {
            return;
        }
        const std::optional<std::string> error = m_screen.editRenewalAmount(text.toStdString());
        if (!error) {
            showScreen();
            return;
        }
        // Asked again with the reason, and what was typed kept for correcting.
        label = toQString(*error) + QStringLiteral(". Amount recorded for this renewal:");
    }
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
    QTimer::singleShot(0, this, [this, service] {
        m_screen.markRenewed(*service);
        showScreen(); // the store announced the change before the screen knew what it recorded
    });
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
        showScreen();
    }
}

} // namespace vorlane
