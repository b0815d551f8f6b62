// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationDetailView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/AppState.h"
#include "components/EmptyStateView.h"
#include "components/OrgAvatar.h"
#include "components/PlainText.h"
#include "components/RowListView.h"
#include "components/SectionedListModel.h"
#include "components/SectionedRowDelegate.h"
#include "components/ServiceContextMenu.h"
#include "components/StatCardView.h"
#include "model/ServiceRecord.h"
#include "screens/CostReportSheet.h"
#include "screens/DetailRowDelegate.h"
#include "screens/DetailRowModel.h"
#include "store/DataStore.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace vorlane {

namespace {

constexpr int avatarSize = 56;
constexpr int statColumns = 3;

QToolButton* actionButton(std::string_view icon, const QString& text) {
    auto* button = new QToolButton;
    button->setIcon(SymbolIcon::icon(icon));
    button->setText(text);
    button->setAccessibleName(text);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    return button;
}

void clearLayout(QLayout* layout) {
    while (QLayoutItem* item = layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

} // namespace

OrganizationDetailView::OrganizationDetailView(AppContext& context, Organization& organization,
                                               QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_screen(context, organization)
    , m_avatar(new QLabel)
    , m_name(PlainText::label())
    , m_project(PlainText::label())
    , m_contact(new QLabel)
    , m_tagRow(new QHBoxLayout)
    , m_favorite(actionButton("star", QStringLiteral("Favorite")))
    , m_archive(actionButton("archivebox", QStringLiteral("Archive")))
    , m_tabs(new QTabBar)
    , m_pages(new QStackedWidget)
    , m_overviewPage(new QWidget)
    , m_statGrid(new QGridLayout)
    , m_overviewModel(nullptr)
    , m_overviewList(nullptr)
    , m_servicePage(new QStackedWidget)
    , m_serviceModel(nullptr)
    , m_serviceList(nullptr)
    , m_serviceEmpty(new EmptyStateView(EmptyState{}))
    , m_rowsPage(new QStackedWidget)
    , m_rowsListPage(new QWidget)
    , m_totals(new QHBoxLayout)
    , m_rowModel(new DetailRowModel(this))
    , m_rowList(new RowListView)
    , m_rowsEmpty(new EmptyStateView(EmptyState{}))
    , m_notes(new QPlainTextEdit) {
    // -- Header
    auto* back = actionButton("chevron.left", QStringLiteral("Back to Organizations"));
    back->setAutoRaise(true);
    connect(back, &QToolButton::clicked, this, [this] { m_screen.back(); });

    QFont nameFont = m_name->font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.6);
    nameFont.setBold(true);
    m_name->setFont(nameFont);
    m_name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_project->setForegroundRole(QPalette::PlaceholderText);
    m_contact->setTextFormat(Qt::RichText);
    m_contact->setOpenExternalLinks(true);
    m_contact->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_contact->setAccessibleName(QStringLiteral("Contact"));
    m_tagRow->setSpacing(6);

    auto* identity = new QVBoxLayout;
    identity->setSpacing(2);
    identity->addWidget(m_name);
    identity->addWidget(m_project);
    identity->addWidget(m_contact);
    identity->addLayout(m_tagRow);
    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(m_avatar, 0, Qt::AlignTop);
    top->addLayout(identity, 1);

    auto* edit = actionButton("pencil", QStringLiteral("Edit"));
    auto* share = actionButton("square.and.arrow.up", QStringLiteral("Share"));
    auto* costReport = actionButton("doc.text.magnifyingglass", toQString(CostReportExport::title));
    auto* addService = actionButton("plus.circle", QStringLiteral("Add Service"));
    auto* smartPaste = actionButton("doc.on.clipboard", QStringLiteral("Smart Paste"));
    m_favorite->setCheckable(true);
    connect(m_favorite, &QToolButton::clicked, this, [this] { m_screen.toggleFavorite(); });
    connect(edit, &QToolButton::clicked, this, [this] { m_screen.edit(); });
    connect(share, &QToolButton::clicked, this, [this] { m_screen.share(); });
    connect(costReport, &QToolButton::clicked, this, [this] {
        CostReportSheet sheet(m_context, m_screen.organization(), this);
        sheet.exec();
    });
    connect(m_archive, &QToolButton::clicked, this, [this] { m_screen.archiveOrRestore(); });
    connect(addService, &QToolButton::clicked, this, [this] { m_screen.addService(); });
    connect(smartPaste, &QToolButton::clicked, this, [this] { m_screen.smartPaste(); });
    auto* actions = new QHBoxLayout;
    actions->setSpacing(6);
    for (QToolButton* button : {m_favorite, edit, share, costReport, m_archive}) {
        actions->addWidget(button);
    }
    actions->addStretch();
    actions->addWidget(addService);
    actions->addWidget(smartPaste);

    // -- Tabs
    for (const auto& tab : m_screen.tabs()) {
        m_tabs->addTab(SymbolIcon::icon(tab.icon), toQString(tab.title));
    }
    m_tabs->setExpanding(false);
    m_tabs->setUsesScrollButtons(true);
    m_tabs->setDocumentMode(true);
    m_tabs->setAccessibleName(QStringLiteral("Sections"));
    m_tabs->setCurrentIndex(static_cast<int>(m_screen.selectedTab().index()));
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) {
        m_screen.selectTab(OrgDetailTab::allCases()[static_cast<std::size_t>(index)]);
    });

    // -- Overview: the stat cards above the two service lists.
    m_overviewList = makeServiceList(m_overviewModel);
    m_overviewList->setAccessibleName(QStringLiteral("Overview services"));
    auto* overviewLayout = new QVBoxLayout(m_overviewPage);
    overviewLayout->setContentsMargins(0, 12, 0, 0);
    m_statGrid->setSpacing(12);
    overviewLayout->addLayout(m_statGrid);
    overviewLayout->addWidget(m_overviewList, 1);

    // -- Service tabs
    m_serviceList = makeServiceList(m_serviceModel);
    m_servicePage->addWidget(m_serviceList);
    m_servicePage->addWidget(m_serviceEmpty);
    connect(m_serviceEmpty, &EmptyStateView::actionTriggered, this,
            [this] { m_screen.addService(); });

    // -- Expenses, renewals, sharing
    auto* rowDelegate = new DetailRowDelegate(m_rowList);
    m_rowList->setModel(m_rowModel);
    m_rowList->setItemDelegate(rowDelegate);
    connect(rowDelegate, &DetailRowDelegate::actionClicked, this,
            &OrganizationDetailView::detailAction);
    connect(m_rowList, &RowListView::rowMenuRequested, this,
            &OrganizationDetailView::showDetailMenu);
    connect(m_rowList, &RowListView::rowChosen, this, [this](const QModelIndex& index) {
        // Expense rows open their service; renewal and share rows act through their button.
        const DetailRowModel::Row* row = m_rowModel->row(index);
        if (row != nullptr && row->actionTitle.isEmpty() &&
            m_screen.selectedTab() == OrgDetailTab::expenses) {
            m_context.state.navigateTo(*static_cast<ServiceRecord*>(row->record));
        }
    });
    auto* rowsLayout = new QVBoxLayout(m_rowsListPage);
    rowsLayout->setContentsMargins(0, 12, 0, 0);
    m_totals->setSpacing(12);
    rowsLayout->addLayout(m_totals);
    rowsLayout->addWidget(m_rowList, 1);
    m_rowsPage->addWidget(m_rowsListPage);
    m_rowsPage->addWidget(m_rowsEmpty);

    // -- Notes, saved as they are typed.
    m_notes->setAccessibleName(QStringLiteral("Notes"));
    m_notes->setPlaceholderText(QStringLiteral("Notes about this organization"));
    m_notes->setTabChangesFocus(true);
    connect(m_notes, &QPlainTextEdit::textChanged, this,
            [this] { m_screen.setNotes(toStdString(m_notes->toPlainText())); });

    m_pages->addWidget(m_overviewPage);
    m_pages->addWidget(m_servicePage);
    m_pages->addWidget(m_rowsPage);
    m_pages->addWidget(m_notes);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 12, 24, 24);
    layout->setSpacing(12);
    layout->addWidget(back, 0, Qt::AlignLeft);
    layout->addLayout(top);
    layout->addLayout(actions);
    layout->addWidget(m_tabs);
    layout->addWidget(m_pages, 1);
    setFocusProxy(m_tabs);

    m_storeConnection = ScopedConnection(context.store.changed, [this] {
        // A deleted organization is forgotten by the navigation state first; this screen is then
        // on its way out and must not read it again.
        if (m_context.state.selectedOrganization() == &m_screen.organization()) {
            refresh();
        }
    });
    m_stateConnection = ScopedConnection(context.state.changed, [this] {
        const int index = static_cast<int>(m_screen.selectedTab().index());
        if (m_tabs->currentIndex() != index) {
            m_tabs->setCurrentIndex(index);
        }
        showTab();
    });
    refresh();
}

OrganizationDetailView::~OrganizationDetailView() = default;

RowListView* OrganizationDetailView::makeServiceList(SectionedListModel*& model) {
    auto* list = new RowListView;
    model = new SectionedListModel(m_context.store, m_context.calendar, this);
    list->setModel(model);
    list->setItemDelegate(new SectionedRowDelegate(list));
    connect(list, &RowListView::rowChosen, this, [this, model](const QModelIndex& index) {
        if (ServiceRecord* service = model->service(index)) {
            m_context.state.navigateTo(*service);
        }
    });
    connect(list, &RowListView::rowMenuRequested, this,
            [this, model](const QModelIndex& index, const QPoint& position) {
                showServiceMenu(index, position, *model);
            });
    return list;
}

RowListView* OrganizationDetailView::currentList() const {
    QWidget* page = m_pages->currentWidget();
    if (page == m_overviewPage) {
        return m_overviewList;
    }
    if (page == m_servicePage) {
        return m_serviceList;
    }
    if (page == m_rowsPage) {
        return m_rowList;
    }
    return nullptr;
}

void OrganizationDetailView::refresh() {
    refreshHeader();
    const auto tabs = m_screen.tabs();
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        m_tabs->setTabText(static_cast<int>(i), toQString(tabs[i].title));
    }
    showTab();
}

void OrganizationDetailView::refreshHeader() {
    const auto header = m_screen.header();
    m_avatar->setPixmap(OrgAvatar::pixmap(m_context.store, m_screen.organization(), avatarSize,
                                          devicePixelRatioF()));
    m_avatar->setAccessibleName(toQString(header.name) + QStringLiteral(" avatar"));
    m_name->setText(toQString(header.name));
    m_project->setText(toQString(header.projectName));
    m_project->setVisible(!header.projectName.empty());
    QStringList contact;
    for (const auto& item : header.contact) {
        const QString text = PlainText::escaped(toQString(item.text));
        contact << (item.link.empty() ? text
                                      : QStringLiteral("<a href=\"%1\">%2</a>")
                                            .arg(PlainText::escaped(toQString(item.link)), text));
    }
    m_contact->setText(contact.join(QStringLiteral(" &nbsp;·&nbsp; ")));
    m_contact->setVisible(!contact.isEmpty());
    clearLayout(m_tagRow);
    for (const std::string& tag : header.tags) {
        auto* chip = PlainText::label(toQString(tag));
        // Capsules in the palette's own colours, so they read on light and dark themes.
        chip->setStyleSheet(QStringLiteral("QLabel { background: palette(alternate-base); "
                                           "border: 1px solid palette(mid); border-radius: 9px; "
                                           "padding: 1px 8px; }"));
        m_tagRow->addWidget(chip);
    }
    m_tagRow->addStretch();
    m_favorite->setChecked(header.isFavorite);
    m_favorite->setIcon(SymbolIcon::icon(header.isFavorite ? "star.fill" : "star"));
    m_favorite->setText(toQString(header.favoriteTitle));
    m_favorite->setAccessibleName(toQString(header.favoriteTitle));
    m_archive->setText(toQString(header.archiveTitle));
    m_archive->setAccessibleName(toQString(header.archiveTitle));
    m_archive->setIcon(SymbolIcon::icon(header.archiveIcon));
}

void OrganizationDetailView::showTab() {
    const OrgDetailTab tab = m_screen.selectedTab();
    // The service list and the row list serve several tabs each: named after the tab they show.
    m_serviceList->setAccessibleName(toQString(tab.label()));
    m_rowList->setAccessibleName(toQString(tab.label()));
    auto showEmpty = [](QStackedWidget* page, EmptyStateView* view, const EmptyState& state) {
        view->setState(state);
        page->setCurrentWidget(view);
    };
    auto statCards = [](QLayout* layout, const std::vector<StatCard>& cards, int columns) {
        clearLayout(layout);
        auto* grid = qobject_cast<QGridLayout*>(layout);
        for (std::size_t i = 0; i < cards.size(); ++i) {
            auto* view = new StatCardView(cards[i]);
            if (grid != nullptr) {
                grid->addWidget(view, static_cast<int>(i) / columns, static_cast<int>(i) % columns);
            } else {
                layout->addWidget(view);
            }
        }
    };

    if (tab == OrgDetailTab::overview) {
        const auto overview = m_screen.overview();
        statCards(m_statGrid, overview.stats, statColumns);
        std::vector<SectionedListModel::Section> sections;
        for (const auto* section : {&overview.expiringSoon, &overview.recentlyUpdated}) {
            sections.push_back({toQString(section->title), {}, section->services});
        }
        m_overviewModel->setSections(std::move(sections));
        m_pages->setCurrentWidget(m_overviewPage);
    } else if (!tab.serviceTypes().empty()) {
        const auto content = m_screen.serviceTab(tab);
        std::vector<SectionedListModel::Section> sections;
        for (const auto& section : content.sections) {
            sections.push_back({toQString(section.title), {}, section.services});
        }
        m_serviceModel->setSections(std::move(sections));
        if (content.emptyState) {
            showEmpty(m_servicePage, m_serviceEmpty, *content.emptyState);
        } else {
            m_servicePage->setCurrentWidget(m_serviceList);
        }
        m_pages->setCurrentWidget(m_servicePage);
    } else if (tab == OrgDetailTab::notes) {
        const QString notes = toQString(m_screen.notes());
        // Only a change from elsewhere is written back: rewriting the text being typed would
        // move the cursor.
        if (m_notes->toPlainText() != notes) {
            m_notes->setPlainText(notes);
        }
        m_pages->setCurrentWidget(m_notes);
    } else {
        std::vector<DetailRowModel::Row> rows;
        std::optional<EmptyState> empty;
        std::vector<StatCard> totals;
        if (tab == OrgDetailTab::expenses) {
            auto content = m_screen.expenses();
            totals = content.totals;
            totals.insert(totals.end(), content.paid.begin(), content.paid.end());
            empty = content.emptyState;
            for (const auto& row : content.rows) {
                DetailRowModel::Row r;
                r.title = toQString(row.title);
                r.subtitle = toQString(row.cycle);
                r.trailing = toQString(row.monthlyCost) + QStringLiteral(" / month");
                r.icon = row.icon;
                r.tint = row.tint;
                r.accessibleText =
                    r.title + QStringLiteral(", ") + r.subtitle + QStringLiteral(", ") + r.trailing;
                r.record = row.service;
                rows.push_back(std::move(r));
            }
        } else if (tab == OrgDetailTab::renewals) {
            auto content = m_screen.renewals();
            empty = content.emptyState;
            for (const auto& band : content.bands) {
                DetailRowModel::Row header;
                header.isHeader = true;
                header.title = toQString(band.title);
                header.count = static_cast<int>(band.rows.size());
                header.trailing = toQString(band.totalCostText);
                rows.push_back(std::move(header));
                for (const auto& row : band.rows) {
                    DetailRowModel::Row r;
                    r.title = toQString(row.title);
                    r.subtitle = toQString(row.service->displaySubtitle());
                    r.icon = row.typeIcon;
                    r.tint = row.typeTint;
                    r.badge = toQString(row.expiration.displayName());
                    r.badgeIcon = row.expiration.icon();
                    r.badgeColor = row.expiration.color();
                    r.trailing = toQString(row.daysText);
                    r.trailingColor = row.daysColor;
                    r.actionTitle = QStringLiteral("Mark Renewed");
                    r.accessibleText = toQString(row.accessibleText);
                    r.record = row.service;
                    rows.push_back(std::move(r));
                }
            }
        } else {
            auto content = m_screen.sharing();
            empty = content.emptyState;
            for (const auto& row : content.rows) {
                DetailRowModel::Row r;
                r.title = toQString(row.date) + QStringLiteral(" — ") + toQString(row.recipient);
                r.subtitle =
                    toQString(row.method + " · " + row.servicesText + " · " + row.secretsText +
                              " · " + row.withheldText + " · " + row.expiryText);
                r.icon = "paperplane";
                r.tint = Palette::Color::blue;
                if (row.isRevoked) {
                    r.badge = QStringLiteral("Revoked");
                    r.badgeColor = Palette::Color::red;
                } else {
                    r.actionTitle = QStringLiteral("Mark Revoked");
                }
                r.accessibleText = toQString(row.accessibleText);
                r.record = row.share;
                rows.push_back(std::move(r));
            }
        }
        statCards(m_totals, totals, 0);
        m_rowModel->setRows(std::move(rows));
        if (empty) {
            showEmpty(m_rowsPage, m_rowsEmpty, *empty);
        } else {
            m_rowsPage->setCurrentWidget(m_rowsListPage);
        }
        m_pages->setCurrentWidget(m_rowsPage);
    }
}

void OrganizationDetailView::showServiceMenu(const QModelIndex& index, const QPoint& globalPosition,
                                             const SectionedListModel& model) {
    if (ServiceRecord* service = model.service(index)) {
        ServiceContextMenu::exec(
            m_context, *service,
            [this](ServiceRecord& chosen) { m_context.state.navigateTo(chosen); }, this,
            globalPosition);
    }
}

void OrganizationDetailView::detailAction(const QModelIndex& index) {
    const DetailRowModel::Row* row = m_rowModel->row(index);
    if (row == nullptr || row->actionTitle.isEmpty()) {
        return;
    }
    if (m_screen.selectedTab() == OrgDetailTab::renewals) {
        m_screen.markRenewed(*static_cast<ServiceRecord*>(row->record));
    } else if (m_screen.selectedTab() == OrgDetailTab::sharing) {
        m_screen.markRevoked(*static_cast<ShareRecord*>(row->record));
    }
}

void OrganizationDetailView::showDetailMenu(const QModelIndex& index,
                                            const QPoint& globalPosition) {
    const DetailRowModel::Row* row = m_rowModel->row(index);
    if (row == nullptr) {
        return;
    }
    // The keyboard's way to the row's button, and to the service behind a service row.
    QMenu menu(this);
    QAction* open = nullptr;
    if (m_screen.selectedTab() != OrgDetailTab::sharing) {
        open = menu.addAction(SymbolIcon::icon("arrow.right.circle"), QStringLiteral("Open"));
    }
    QAction* action = row->actionTitle.isEmpty() ? nullptr : menu.addAction(row->actionTitle);
    if (menu.isEmpty()) {
        return;
    }
    QAction* chosen = menu.exec(globalPosition);
    if (chosen != nullptr && chosen == open) {
        m_context.state.navigateTo(*static_cast<ServiceRecord*>(row->record));
    } else if (chosen != nullptr && chosen == action) {
        detailAction(index);
    }
}

} // namespace vorlane
