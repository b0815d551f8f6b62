#include "screens/SidebarView.h"

#include "QtText.h"
#include "SymbolIcon.h"
#include "app/AppContext.h"
#include "app/AppState.h"

#include <QListWidget>
#include <QVBoxLayout>

namespace vorlane {

SidebarView::SidebarView(AppContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_list(new QListWidget) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_list->setIconSize(QSize(20, 20));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setAccessibleName(QStringLiteral("Sidebar"));
    for (const SidebarItem item : SidebarItem::allCases()) {
        m_list->addItem(
            new QListWidgetItem(SymbolIcon::icon(item.icon()), toQString(item.displayName())));
    }
    layout->addWidget(m_list);
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && row < static_cast<int>(SidebarItem::caseCount)) {
            m_context.state.setSelectedSidebarItem(SidebarItem::allCases()[row]);
        }
    });
    m_stateConnection = ScopedConnection(m_context.state.changed, [this] { showSelection(); });
    showSelection();
    setFocusProxy(m_list);
}

void SidebarView::showSelection() {
    const int row = static_cast<int>(m_context.state.selectedSidebarItem().index());
    if (m_list->currentRow() != row) {
        m_list->setCurrentRow(row);
    }
}

} // namespace vorlane
