// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/RenewalScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

class QFrame;
class QLabel;
class QPushButton;

namespace vorlane {

class EmptyStatePages;
class EmptyStateView;
class RenewalListModel;
class RenewalRowDelegate;
class RowListView;

// The renewal screen: the header (title, item count) over the bands or the empty state. A row
// chosen (click, Return) opens the service; its "Mark Renewed" button, Ctrl+R on the current row,
// or the row's menu renews it, and a bar above the list then says what the renewal recorded, with
// "Edit Amount" to correct it. Follows the store as it changes.
class RenewalView : public QWidget {
    Q_OBJECT

public:
    RenewalView(AppContext& context, RenewalFilter filter, Organization* organization = nullptr,
                QWidget* parent = nullptr);

    const RenewalScreen& screen() const { return m_screen; }
    RowListView* list() const { return m_list; }
    QLabel* countLabel() const { return m_count; }
    // After a renewal: what it recorded, and "Edit Amount".
    QLabel* noticeLabel() const { return m_notice; }
    QPushButton* editAmountButton() const { return m_editAmount; }

private:
    void showScreen();
    void choose(const QModelIndex& index);
    void markRenewed(const QModelIndex& index);
    void showRowMenu(const QModelIndex& index, const QPoint& globalPosition);
    void editAmount();

    RenewalScreen m_screen;
    QLabel* m_count;
    EmptyStatePages* m_pages;
    RowListView* m_list;
    RenewalListModel* m_model;
    RenewalRowDelegate* m_delegate;
    EmptyStateView* m_empty;
    QFrame* m_noticeBar;
    QLabel* m_notice;
    QPushButton* m_editAmount;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
