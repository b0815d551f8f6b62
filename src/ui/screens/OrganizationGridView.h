// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/OrganizationGridScreen.h"
#include "util/ScopedConnection.h"

#include <QWidget>

class QButtonGroup;
class QLabel;
class QModelIndex;

namespace vorlane {

struct AppContext;
class EmptyStatePages;
class EmptyStateView;
class OrganizationCardDelegate;
class OrganizationCardModel;
class RowListView;

// The grid of organization cards behind "Organizations" and "Favorites": a title, the count, the
// sort picker and the cards, reflowing with the width; or the empty state. A card turns to its
// summary while the pointer is over it or while it has the keyboard focus; a click or Return
// opens it; the right button or the menu key opens its menu. Re-reads the store on every change.
// Main thread; the context must outlive the widget.
class OrganizationGridView : public QWidget {
    Q_OBJECT

public:
    OrganizationGridView(AppContext& context, OrganizationFilter filter, QWidget* parent = nullptr);
    ~OrganizationGridView() override;

    const OrganizationGridScreen& screen() const { return m_screen; }
    RowListView* grid() const { return m_grid; }
    OrganizationCardDelegate* cardDelegate() const { return m_delegate; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reload();
    void reflow();
    void updateFlips();
    void showMenu(const QModelIndex& index, const QPoint& globalPosition);

    AppContext& m_context;
    OrganizationGridScreen m_screen;
    QLabel* m_count;
    QButtonGroup* m_sort;
    EmptyStatePages* m_pages;
    RowListView* m_grid;
    OrganizationCardModel* m_model;
    OrganizationCardDelegate* m_delegate;
    EmptyStateView* m_empty;
    Organization* m_hovered = nullptr;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
