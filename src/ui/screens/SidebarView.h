// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/SidebarModel.h"
#include "util/ScopedConnection.h"

#include <QWidget>

#include <optional>

class QListView;
class QModelIndex;
class QToolButton;

namespace vorlane {

struct AppContext;
class SidebarListModel;

// The left column under the search field: the destinations in their sections with live counts,
// bound both ways to `AppState::selectedSidebarItem`; the quick list of organizations, each
// opening its organization when clicked or activated with Return; and the "New Organization"
// button below. Counts follow the store: a burst of changes is redrawn once, when the event loop
// next runs. Main thread; the context must outlive the view.
class SidebarView : public QWidget {
    Q_OBJECT

public:
    explicit SidebarView(AppContext& context, QWidget* parent = nullptr);
    ~SidebarView() override;

    // For tests and screenshots.
    QListView* list() const { return m_list; }
    QToolButton* newOrganizationButton() const { return m_newOrganization; }

private:
    void showSelection();
    void scheduleRefresh();
    void rowChosen(const QModelIndex& index);
    void rowActivated(const QModelIndex& index);

    AppContext& m_context;
    SidebarModel m_model;
    SidebarListModel* m_rows;
    QListView* m_list;
    QToolButton* m_newOrganization;
    SidebarItem m_shownItem = SidebarItem::dashboard;
    bool m_refreshPending = false;
    std::optional<std::size_t> m_shownFindings; // the password check's count the badge shows
    ScopedConnection m_stateConnection;
    ScopedConnection m_lockConnection;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
