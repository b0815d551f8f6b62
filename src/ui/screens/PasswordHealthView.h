// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/PasswordHealthScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

class QLabel;

namespace vorlane {

class EmptyStatePages;
class EmptyStateView;
class PasswordHealthListModel;
class RowListView;

// "Password Health": the button that starts the check, then the counts and the report's sections,
// each row opening its service. The report lives only as long as this view and goes at once when
// the vault is locked; the number of findings is handed to the sidebar's badge.
class PasswordHealthView : public QWidget {
    Q_OBJECT

public:
    explicit PasswordHealthView(AppContext& context, QWidget* parent = nullptr);
    ~PasswordHealthView() override;

    const PasswordHealthScreen& screen() const { return m_screen; }
    RowListView* list() const { return m_list; }
    QLabel* counts() const { return m_counts; }
    EmptyStateView* emptyState() const { return m_empty; }

private:
    void showScreen();

    AppContext& m_context;
    PasswordHealthScreen m_screen;
    QLabel* m_counts;
    EmptyStatePages* m_pages;
    RowListView* m_list;
    PasswordHealthListModel* m_model;
    EmptyStateView* m_empty;
    ScopedConnection m_screenConnection;
    ScopedConnection m_lockConnection;
};

} // namespace vorlane
