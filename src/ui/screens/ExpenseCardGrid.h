// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

namespace vorlane {

// The expense cards in rows that wrap with the width (as many columns of at least
// `minimumCardWidth` as fit), each row as tall as its tallest card. The grid is exactly as tall
// as its cards and never scrolls itself: the page around it does. Cards take the focus with the
// arrow keys and are announced by their sentence.
class ExpenseCardGrid : public QListView {
    Q_OBJECT

public:
    static constexpr int minimumCardWidth = 300;
    static constexpr int gap = 8;

    explicit ExpenseCardGrid(QWidget* parent = nullptr);

    // The width of every card's cell for the current viewport: the card and the gap after it.
    int cellWidth() const;

    void setModel(QAbstractItemModel* model) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitHeight();
};

} // namespace vorlane
