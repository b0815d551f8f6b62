#pragma once

#include "util/ScopedConnection.h"

#include <QWidget>

class QListWidget;

namespace vorlane {

struct AppContext;

// The left column under the search field: the destinations, bound both ways to
// `AppState::selectedSidebarItem`.
class SidebarView : public QWidget {
    Q_OBJECT

public:
    explicit SidebarView(AppContext& context, QWidget* parent = nullptr);

private:
    void showSelection();

    AppContext& m_context;
    QListWidget* m_list;
    ScopedConnection m_stateConnection;
};

} // namespace vorlane
