// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/DashboardScreen.h"
#include "util/ScopedConnection.h"

#include <QScrollArea>

#include <array>

class QLabel;
class QPushButton;

namespace vorlane {

struct AppContext;
class AlertListModel;
class BarChart;
class RowListView;
class SectionHeader;
class ServiceListModel;
class StatCardView;

// The dashboard, the first screen: the greeting, the four stat cards, the chart of costs due per
// month, the alert banners (only when there are any), "Expiring This Month" with "View All", and
// "Recently Updated". One scrolling page; its lists are as tall as their rows, so the page scrolls
// as a whole. A click or Return on a banner or row opens the service. Follows the store.
class DashboardView : public QScrollArea {
    Q_OBJECT

public:
    explicit DashboardView(AppContext& context, QWidget* parent = nullptr);

    const DashboardScreen& screen() const { return m_screen; }
    RowListView* alertList() const { return m_alerts; }
    RowListView* expiringList() const { return m_expiring; }
    RowListView* recentList() const { return m_recent; }
    QPushButton* viewAllButton() const { return m_viewAll; }

private:
    void showScreen();
    RowListView* makeList(const QString& name);
    void fitHeight(RowListView* list, int rowHeight);
    void followCurrentRow(RowListView* list);

    AppContext& m_context;
    DashboardScreen m_screen;
    std::array<StatCardView*, 5> m_stats{};
    BarChart* m_chart;
    QLabel* m_chartEmpty;
    SectionHeader* m_alertsHeader;
    RowListView* m_alerts;
    AlertListModel* m_alertModel;
    SectionHeader* m_expiringHeader;
    QPushButton* m_viewAll;
    RowListView* m_expiring;
    ServiceListModel* m_expiringModel;
    QLabel* m_expiringEmpty;
    SectionHeader* m_recentHeader;
    RowListView* m_recent;
    ServiceListModel* m_recentModel;
    QLabel* m_recentEmpty;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
