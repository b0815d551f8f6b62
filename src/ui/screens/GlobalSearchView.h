// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/GlobalSearchScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

class QLabel;

namespace vorlane {

class EmptyStatePages;
class EmptyStateView;
class RowListView;
class SectionedListModel;
class ServiceTypePicker;

// The search results pane: header with the query and count, the type filter, then the
// "Organizations" and "Services & Credentials" sections in one list, or "No results found".
// Follows the query as it is typed and the store as it changes.
class GlobalSearchView : public QWidget {
    Q_OBJECT

public:
    explicit GlobalSearchView(AppContext& context, QWidget* parent = nullptr);

    const GlobalSearchScreen& screen() const { return m_screen; }
    RowListView* list() const { return m_list; }

private:
    void rebuild();
    void showScreen();
    void chooseRow(const QModelIndex& index);
    void showRowMenu(const QModelIndex& index, const QPoint& globalPosition);

    AppContext& m_context;
    GlobalSearchScreen m_screen;
    QLabel* m_title;
    QLabel* m_count;
    ServiceTypePicker* m_typeFilter;
    EmptyStatePages* m_pages;
    RowListView* m_list;
    SectionedListModel* m_model;
    EmptyStateView* m_empty;
    ScopedConnection m_storeConnection;
    ScopedConnection m_stateConnection;
};

} // namespace vorlane
