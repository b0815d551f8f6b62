// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ExpenseView.h"

#include "QtText.h"
#include "app/AppContext.h"
#include "components/BarChart.h"
#include "components/OverviewPage.h"
#include "components/ScreenTitle.h"
#include "components/StatCardView.h"
#include "screens/CostReportSheet.h"
#include "screens/ExpenseCardDelegate.h"
#include "screens/ExpenseCardGrid.h"
#include "screens/ExpenseCardModel.h"
#include "store/DataStore.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vorlane {

namespace {

constexpr int pickerWidth = 360;

} // namespace

ExpenseView::ExpenseView(AppContext& context, QWidget* parent)
    : QScrollArea(parent)
    , m_context(context)
    , m_screen(context.store, context.calendar)
    , m_groupBy(new QButtonGroup(this))
    , m_costReport(new QPushButton(toQString(CostReportExport::title)))
    , m_costsDue(new BarChart(BarChart::Orientation::vertical))
    , m_costsDueEmpty(new QLabel(toQString(CostsDueChart::emptyText)))
    , m_chart(new BarChart(BarChart::Orientation::horizontal))
    , m_grid(new ExpenseCardGrid)
    , m_cards(new ExpenseCardModel(this))
    , m_empty(new QLabel(toQString(ExpenseScreen::emptyText))) {
    QVBoxLayout* layout = OverviewPage::install(*this);

    QLabel* title =
        ScreenTitle::create(toQString(ExpenseScreen::title), ScreenTitle::Kind::overview);
    layout->addWidget(title);
    auto* subtitle = new QLabel(toQString(ExpenseScreen::subtitle));
    subtitle->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(subtitle);
    layout->addSpacing(4);

    // "Group by" and the segmented picker: three exclusive buttons side by side, one frame.
    auto* filterBar = new QHBoxLayout;
    auto* groupLabel = new QLabel(toQString(ExpenseScreen::groupByTitle));
    filterBar->addWidget(groupLabel);
    auto* picker = new QWidget;
    picker->setFixedWidth(pickerWidth);
    picker->setAccessibleName(toQString(ExpenseScreen::groupByTitle));
    // The chosen segment must stand out in any palette; a plain checked button barely does on
    // a dark one. Colours come from the palette, so the picker follows the theme.
    picker->setStyleSheet(QStringLiteral(
        "QPushButton { border: 1px solid palette(mid); padding: 4px 8px;"
        " background: palette(button); color: palette(button-text); }"
        "QPushButton#first { border-top-left-radius: 6px; border-bottom-left-radius: 6px; }"
        "QPushButton#last { border-top-right-radius: 6px; border-bottom-right-radius: 6px; }"
        "QPushButton:hover { border-color: palette(highlight); }"
        "QPushButton:focus { border: 2px solid palette(highlight); }"
        "QPushButton:checked { background: palette(highlight); color: palette(highlighted-text);"
        " border-color: palette(highlight); }"));
    auto* segments = new QHBoxLayout(picker);
    segments->setContentsMargins(0, 0, 0, 0);
    segments->setSpacing(0);
    for (std::size_t i = 0; i < ExpenseScreen::groupings.size(); ++i) {
        const ExpenseScreen::GroupBy groupBy = ExpenseScreen::groupings[i];
        auto* button = new QPushButton(toQString(ExpenseScreen::label(groupBy)));
        button->setCheckable(true);
        button->setChecked(groupBy == m_screen.groupBy());
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        if (i == 0) {
            button->setObjectName(QStringLiteral("first"));
        } else if (i + 1 == ExpenseScreen::groupings.size()) {
            button->setObjectName(QStringLiteral("last"));
        }
        m_groupBy->addButton(button, static_cast<int>(i));
        segments->addWidget(button);
    }
    groupLabel->setBuddy(m_groupBy->button(0));
    filterBar->addWidget(picker);
    filterBar->addStretch();
    filterBar->addWidget(m_costReport);
    layout->addLayout(filterBar);

    auto* summary = new QGridLayout;
    summary->setSpacing(12);
    for (std::size_t i = 0; i < m_summary.size(); ++i) {
        m_summary[i] = new StatCardView(StatCard{});
        summary->addWidget(m_summary[i], 0, static_cast<int>(i));
    }
    layout->addLayout(summary);
    layout->addSpacing(4);

    // What falls due month by month belongs to every grouping, so it comes before the group chart.
    m_costsDue->setTitle(toQString(CostsDueChart::title));
    layout->addWidget(m_costsDue);
    m_costsDueEmpty->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_costsDueEmpty);
    layout->addWidget(m_chart);
    m_empty->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_empty);
    m_grid->setItemDelegate(new ExpenseCardDelegate(m_grid));
    m_grid->setModel(m_cards);
    m_grid->setAccessibleName(QStringLiteral("Expense cards"));
    // Outside the grid's spacing, so that the cards line up with the summary above.
    layout->addWidget(m_grid);
    layout->setAlignment(m_grid, Qt::AlignTop);
    layout->addStretch();

    connect(m_costReport, &QPushButton::clicked, this, &ExpenseView::openCostReport);
    connect(m_groupBy, &QButtonGroup::idClicked, this, [this](int id) {
        m_screen.setGroupBy(ExpenseScreen::groupings[static_cast<std::size_t>(id)]);
        showGroups();
    });
    m_storeConnection = ScopedConnection(m_context.store.changed, [this] {
        m_screen.reload();
        showScreen();
    });
    setAccessibleName(toQString(ExpenseScreen::title));
    showScreen();
}

QAbstractButton* ExpenseView::groupButton(ExpenseScreen::GroupBy groupBy) const {
    const auto at =
        std::find(ExpenseScreen::groupings.begin(), ExpenseScreen::groupings.end(), groupBy);
    return m_groupBy->button(static_cast<int>(at - ExpenseScreen::groupings.begin()));
}

CostReportSheet* ExpenseView::costReportSheet() const {
    return findChild<CostReportSheet*>();
}

void ExpenseView::openCostReport() {
    if (costReportSheet() != nullptr) {
        return;
    }
    const QModelIndex current = m_grid->currentIndex();
    const Organization* selected = m_screen.reportOrganization(
        current.isValid() ? std::optional<std::size_t>(static_cast<std::size_t>(current.row()))
                          : std::nullopt);
    auto* sheet = new CostReportSheet(m_context, selected, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void ExpenseView::showScreen() {
    for (std::size_t i = 0; i < m_summary.size() && i < m_screen.summary().size(); ++i) {
        m_summary[i]->setCard(m_screen.summary()[i]);
    }
    m_costReport->setEnabled(m_screen.canExportCostReport());
    showGroups();
}

void ExpenseView::showGroups() {
    const bool any = !m_screen.cards().empty();
    m_costsDue->setBars(m_screen.costsDue().bars());
    m_costsDue->setVisible(any && m_screen.costsDue().hasCostsDue());
    m_costsDueEmpty->setVisible(any && !m_screen.costsDue().hasCostsDue());
    m_chart->setTitle(toQString(m_screen.chartTitle()));
    m_chart->setBars(m_screen.chart());
    m_chart->setVisible(any);
    m_cards->setCards(m_screen.cards());
    m_grid->setVisible(any);
    m_empty->setVisible(!any);
}

} // namespace vorlane
