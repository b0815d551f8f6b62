// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ArchiveScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

namespace vorlane {

class EmptyStatePages;
class EmptyStateView;
class RowListView;
class SectionedListModel;

// The archive: "Archived Organizations" and "Archived Services" in one list, each row with its
// menu (restore, delete and the rest), or "Archive is Empty". Follows the store as it changes.
class ArchiveView : public QWidget {
    Q_OBJECT

public:
    explicit ArchiveView(AppContext& context, QWidget* parent = nullptr);

    const ArchiveScreen& screen() const { return m_screen; }
    RowListView* list() const { return m_list; }

private:
    void showScreen();
    void showRowMenu(const QModelIndex& index, const QPoint& globalPosition);
    void showOrganizationMenu(Organization& organization, const QPoint& globalPosition);

    AppContext& m_context;
    ArchiveScreen m_screen;
    EmptyStatePages* m_pages;
    RowListView* m_list;
    SectionedListModel* m_model;
    EmptyStateView* m_empty;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
