// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStackedWidget>

#include <optional>

namespace vorlane {

struct EmptyState;
class EmptyStateView;

// A screen's content, or in its place the empty state its screen model gives: the two pages of
// one stack, so that the empty state fills exactly the room the content had.
class EmptyStatePages : public QStackedWidget {
    Q_OBJECT

public:
    explicit EmptyStatePages(QWidget* parent = nullptr);

    // Takes both as its pages (and so owns them); call once, before showEmptyState.
    void setPages(QWidget* content, EmptyStateView* empty);
    // Shows `state` in place of the content, or the content when there is none.
    void showEmptyState(const std::optional<EmptyState>& state);

private:
    QWidget* m_content = nullptr;
    EmptyStateView* m_empty = nullptr;
};

} // namespace vorlane
