// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/StatCard.h"

#include <QWidget>

namespace vorlane {

// A small rounded card drawing the core's StatCard: the icon in its colour, the value large, the
// title beneath ("Monthly Spend", "$1,240"). The value arrives already written by the screen
// model. Announced with the card's accessible text.
class StatCardView : public QWidget {
    Q_OBJECT

public:
    explicit StatCardView(StatCard card, QWidget* parent = nullptr);

    void setCard(StatCard card);
    const StatCard& card() const { return m_card; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    StatCard m_card;
};

} // namespace vorlane
