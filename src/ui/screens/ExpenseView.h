// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ExpenseScreen.h"
#include "util/ScopedConnection.h"

#include <QScrollArea>

#include <array>

class QAbstractButton;
class QButtonGroup;
class QLabel;

namespace vorlane {

struct AppContext;
class BarChart;
class ExpenseCardGrid;
class ExpenseCardModel;
class StatCardView;

// "Expense Overview": the header, "Group by" with its three-way segmented picker, the four
// summary cards, the chart of the groups' monthly costs and the grid of expense cards, on one
// scrolling page. Follows the store.
class ExpenseView : public QScrollArea {
    Q_OBJECT

public:
    explicit ExpenseView(AppContext& context, QWidget* parent = nullptr);

    const ExpenseScreen& screen() const { return m_screen; }
    // The picker's button for `groupBy`.
    QAbstractButton* groupButton(ExpenseScreen::GroupBy groupBy) const;
    ExpenseCardGrid* cardGrid() const { return m_grid; }
    BarChart* chart() const { return m_chart; }

private:
    void showScreen();
    void showGroups();

    AppContext& m_context;
    ExpenseScreen m_screen;
    QButtonGroup* m_groupBy;
    std::array<StatCardView*, 4> m_summary{};
    BarChart* m_chart;
    ExpenseCardGrid* m_grid;
    ExpenseCardModel* m_cards;
    QLabel* m_empty;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
