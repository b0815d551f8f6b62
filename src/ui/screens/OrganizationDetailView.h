// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/OrganizationDetailScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

class QGridLayout;
class QHBoxLayout;
class QLabel;
class QModelIndex;
class QPlainTextEdit;
class QStackedWidget;
class QTabBar;
class QToolButton;

namespace vorlane {

struct AppContext;
class DetailRowModel;
class EmptyStateView;
class RowListView;
class SectionedListModel;

// The organization detail: "Back to Organizations", the avatar, name, project, contact line, tags
// and the actions; then one tab per OrgDetailTab, bound both ways to the navigation state's
// selected tab, each drawn from the screen model. Re-reads everything when the store changes.
// Main thread; the context must outlive the widget.
class OrganizationDetailView : public QWidget {
    Q_OBJECT

public:
    OrganizationDetailView(AppContext& context, Organization& organization,
                           QWidget* parent = nullptr);
    ~OrganizationDetailView() override;

    QTabBar* tabBar() const { return m_tabs; }
    QPlainTextEdit* notesEditor() const { return m_notes; }
    // The list the current tab shows (service, expense, renewal or share rows); null on the
    // notes tab.
    RowListView* currentList() const;

private:
    void refresh();
    void refreshHeader();
    void showTab();
    void showServiceMenu(const QModelIndex& index, const QPoint& globalPosition,
                         const SectionedListModel& model);
    void detailAction(const QModelIndex& index);
    void showDetailMenu(const QModelIndex& index, const QPoint& globalPosition);
    RowListView* makeServiceList(SectionedListModel*& model);

    AppContext& m_context;
    OrganizationDetailScreen m_screen;

    QLabel* m_avatar;
    QLabel* m_name;
    QLabel* m_project;
    QLabel* m_contact;
    QHBoxLayout* m_tagRow;
    QToolButton* m_favorite;
    QToolButton* m_archive;
    QTabBar* m_tabs;
    QStackedWidget* m_pages;

    QWidget* m_overviewPage;
    QGridLayout* m_statGrid;
    SectionedListModel* m_overviewModel;
    RowListView* m_overviewList;

    QStackedWidget* m_servicePage;
    SectionedListModel* m_serviceModel;
    RowListView* m_serviceList;
    EmptyStateView* m_serviceEmpty;

    QStackedWidget* m_rowsPage; // expenses, renewals, sharing
    QWidget* m_rowsListPage;
    QHBoxLayout* m_totals;
    DetailRowModel* m_rowModel;
    RowListView* m_rowList;
    EmptyStateView* m_rowsEmpty;

    QPlainTextEdit* m_notes;
    ScopedConnection m_storeConnection;
    ScopedConnection m_stateConnection;
};

} // namespace vorlane
