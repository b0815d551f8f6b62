// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/AllCredentialsScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

class QComboBox;
class QLabel;

namespace vorlane {

class EmptyStatePages;
class EmptyStateView;
class RowListView;
class ServiceListModel;
class ServiceTypePicker;

// "All Credentials": the filter bar (type, status, count) above every active service's row, or
// the empty state in place of both. Follows the store as it changes.
class AllCredentialsView : public QWidget {
    Q_OBJECT

public:
    explicit AllCredentialsView(AppContext& context, QWidget* parent = nullptr);

    const AllCredentialsScreen& screen() const { return m_screen; }
    RowListView* list() const { return m_list; }

private:
    void showScreen();

    AppContext& m_context;
    AllCredentialsScreen m_screen;
    ServiceTypePicker* m_typeFilter;
    QComboBox* m_statusFilter;
    QLabel* m_count;
    EmptyStatePages* m_pages;
    QWidget* m_content;
    RowListView* m_list;
    ServiceListModel* m_model;
    EmptyStateView* m_empty;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
