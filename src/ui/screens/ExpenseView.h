// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ExpenseScreen.h"
#include "util/ScopedConnection.h"

#include <QScrollArea>

#include <array>

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QPushButton;

namespace vorlane {

struct AppContext;
class BarChart;
class CostReportSheet;
class ExpenseCardGrid;
class ExpenseCardModel;
class StatCardView;

// "Expense Overview": the header, "Group by" with its three-way segmented picker and "Export Cost
// Report…", the four summary cards, the chart of the costs due in the next twelve months, the
// chart of the groups' monthly costs and the grid of expense cards, on one scrolling page.
// Follows the store.
class ExpenseView : public QScrollArea {
    Q_OBJECT

public:
    explicit ExpenseView(AppContext& context, QWidget* parent = nullptr);

    const ExpenseScreen& screen() const { return m_screen; }
    // The picker's button for `groupBy`.
    QAbstractButton* groupButton(ExpenseScreen::GroupBy groupBy) const;
    ExpenseCardGrid* cardGrid() const { return m_grid; }
    BarChart* chart() const { return m_chart; }
    BarChart* costsDueChart() const { return m_costsDue; }
    QPushButton* costReportButton() const { return m_costReport; }
    // The sheet "Export Cost Report…" opened, window-modal, starting at the organization of the
    // current card; null when none is open. It deletes itself once closed.
    CostReportSheet* costReportSheet() const;

private:
    void showScreen();
    void showGroups();
    void openCostReport();

    AppContext& m_context;
    ExpenseScreen m_screen;
    QButtonGroup* m_groupBy;
    std::array<StatCardView*, 4> m_summary{};
    QPushButton* m_costReport;
    BarChart* m_costsDue;
    QLabel* m_costsDueEmpty;
    BarChart* m_chart;
    ExpenseCardGrid* m_grid;
    ExpenseCardModel* m_cards;
    QLabel* m_empty;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
