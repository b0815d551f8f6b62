// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationGridView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "components/EmptyStatePages.h"
#include "components/EmptyStateView.h"
#include "components/RowListView.h"
#include "screens/OrganizationCardDelegate.h"
#include "screens/OrganizationCardModel.h"
#include "store/DataStore.h"

#include <QButtonGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QToolButton>
#include <QVBoxLayout>

namespace vorlane {

namespace {

constexpr int cardSpacing = 20;
constexpr int pagePadding = 24;
constexpr int sortPickerWidth = 280;

} // namespace

OrganizationGridView::OrganizationGridView(AppContext& context, OrganizationFilter filter,
                                           QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context.store, context.state, context.calendar, filter)
    , m_count(new QLabel)
    , m_sort(new QButtonGroup(this))
    , m_pages(new EmptyStatePages)
    , m_grid(new RowListView)
    , m_model(new OrganizationCardModel(m_screen, this))
    , m_delegate(new OrganizationCardDelegate(m_screen, context.store, *m_grid))
    , m_empty(new EmptyStateView(EmptyState{})) {
    const QString title = toQString(m_screen.title());
    setAccessibleName(title);

    auto* heading = new QLabel(title);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.6);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    m_count->setForegroundRole(QPalette::PlaceholderText);

    // The segmented "Sort" picker: one checkable button per order, exclusive.
    auto* picker = new QWidget;
    picker->setAccessibleName(QStringLiteral("Sort"));
    picker->setFixedWidth(sortPickerWidth);
    auto* pickerLayout = new QHBoxLayout(picker);
    pickerLayout->setContentsMargins(0, 0, 0, 0);
    pickerLayout->setSpacing(0);
    for (const auto order : OrganizationGridScreen::sortOrders) {
        auto* button = new QToolButton;
        button->setText(toQString(OrganizationGridScreen::label(order)));
        button->setAccessibleName(QStringLiteral("Sort by ") + button->text());
        button->setCheckable(true);
        button->setChecked(order == m_screen.sortOrder());
        button->setAutoRaise(false);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        m_sort->addButton(button, static_cast<int>(order));
        pickerLayout->addWidget(button);
    }
    connect(m_sort, &QButtonGroup::idClicked, this, [this](int id) {
        m_screen.setSortOrder(static_cast<OrganizationGridScreen::SortOrder>(id));
        reload();
    });

    auto* header = new QHBoxLayout;
    auto* titles = new QVBoxLayout;
    titles->setSpacing(2);
    titles->addWidget(heading);
    titles->addWidget(m_count);
    header->addLayout(titles);
    header->addStretch();
    header->addWidget(picker, 0, Qt::AlignBottom);

    m_grid->setAccessibleName(title);
    m_grid->setViewMode(QListView::IconMode);
    m_grid->setFlow(QListView::LeftToRight);
    m_grid->setWrapping(true);
    m_grid->setMovement(QListView::Static);
    m_grid->setResizeMode(QListView::Adjust);
    m_grid->setSelectionRectVisible(false);
    m_grid->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_grid->setModel(m_model);
    m_grid->setItemDelegate(m_delegate);
    m_grid->viewport()->installEventFilter(this);
    m_grid->installEventFilter(this);
    m_grid->viewport()->setAutoFillBackground(false);
    connect(m_grid, &RowListView::rowChosen, this, [this](const QModelIndex& index) {
        m_screen.open(static_cast<std::size_t>(index.row()));
    });
    connect(m_grid, &RowListView::rowMenuRequested, this, &OrganizationGridView::showMenu);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { updateFlips(); });
    connect(m_empty, &EmptyStateView::actionTriggered, this,
            [this] { m_screen.performEmptyStateAction(); });

    auto* gridPage = new QWidget;
    auto* gridLayout = new QVBoxLayout(gridPage);
    gridLayout->setContentsMargins(pagePadding, pagePadding, pagePadding - cardSpacing / 2, 0);
    gridLayout->setSpacing(16);
    gridLayout->addLayout(header);
    gridLayout->addWidget(m_grid, 1);
    m_pages->setPages(gridPage, m_empty);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pages);
    setFocusProxy(m_grid);

    m_storeConnection = ScopedConnection(context.store.changed, [this] {
        m_screen.rebuild();
        reload();
    });
    reload();
}

OrganizationGridView::~OrganizationGridView() = default;

void OrganizationGridView::reload() {
    Organization* current = m_model->organization(m_grid->currentIndex());
    m_model->reload();
    QList<Organization*> shown;
    for (const auto& card : m_screen.cards()) {
        shown.push_back(card.organization);
    }
    m_delegate->keepOnly(shown);
    if (!shown.contains(m_hovered)) {
        m_hovered = nullptr;
    }
    if (const qsizetype row = shown.indexOf(current); row >= 0) {
        m_grid->setCurrentIndex(m_model->index(static_cast<int>(row)));
    }
    m_count->setText(toQString(m_screen.countText()));
    m_pages->showEmptyState(m_screen.emptyState());
    updateFlips();
}

void OrganizationGridView::reflow() {
    // Whole grid cells that add up to a little less than the viewport: an icon-mode list wraps
    // a row as soon as the next cell would touch its right edge.
    const int available = m_grid->viewport()->width() - 2;
    const int columns =
        qMax(1, available / (OrganizationCardDelegate::minimumCardWidth + cardSpacing));
    const int cell = qMax(OrganizationCardDelegate::minimumCardWidth / 2, available / columns);
    m_delegate->setCardWidth(cell - cardSpacing);
    m_grid->setGridSize(QSize(cell, OrganizationCardDelegate::cardHeight + cardSpacing));
}

void OrganizationGridView::updateFlips() {
    // The card under the pointer and the card with the keyboard focus show their summary.
    Organization* focused =
        m_grid->hasFocus() ? m_model->organization(m_grid->currentIndex()) : nullptr;
    for (const auto& card : m_screen.cards()) {
        m_delegate->setFlipped(card.organization,
                               card.organization == m_hovered || card.organization == focused);
    }
}

bool OrganizationGridView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_grid->viewport()) {
        switch (event->type()) {
        case QEvent::MouseMove:
        case QEvent::HoverMove: {
            const QPoint position = event->type() == QEvent::MouseMove
                                        ? static_cast<QMouseEvent*>(event)->position().toPoint()
                                        : static_cast<QHoverEvent*>(event)->position().toPoint();
            Organization* hovered = m_model->organization(m_grid->indexAt(position));
            if (hovered != m_hovered) {
                m_hovered = hovered;
                updateFlips();
            }
            break;
        }
        case QEvent::Leave:
        case QEvent::HoverLeave:
            if (m_hovered != nullptr) {
                m_hovered = nullptr;
                updateFlips();
            }
            break;
        case QEvent::Resize:
            reflow();
            break;
        default:
            break;
        }
    } else if (watched == m_grid &&
               (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)) {
        updateFlips();
    }
    return QWidget::eventFilter(watched, event);
}

void OrganizationGridView::showMenu(const QModelIndex& index, const QPoint& globalPosition) {
    const auto row = static_cast<std::size_t>(index.row());
    QMenu menu(this);
    for (const auto& item : m_screen.menu(row)) {
        if (!item.action) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(SymbolIcon::icon(item.icon), toQString(item.title));
        action->setData(static_cast<int>(*item.action));
    }
    QAction* chosen = menu.exec(globalPosition);
    if (chosen != nullptr) {
        m_screen.perform(static_cast<OrganizationActions::Action>(chosen->data().toInt()), row);
    }
}

} // namespace vorlane
