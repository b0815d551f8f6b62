// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/EmptyStatePages.h"

#include "components/EmptyStateView.h"
#include "screens/EmptyState.h"

namespace vorlane {

EmptyStatePages::EmptyStatePages(QWidget* parent)
    : QStackedWidget(parent) {}

void EmptyStatePages::setPages(QWidget* content, EmptyStateView* empty) {
    m_content = content;
    m_empty = empty;
    addWidget(content);
    addWidget(empty);
}

void EmptyStatePages::showEmptyState(const std::optional<EmptyState>& state) {
    if (state) {
        m_empty->setState(*state);
        setCurrentWidget(m_empty);
    } else {
        setCurrentWidget(m_content);
    }
}

} // namespace vorlane
