// SPDX-License-Identifier: GPL-3.0-or-later
#include "components/OverviewPage.h"

#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

namespace vorlane {

QVBoxLayout* OverviewPage::install(QScrollArea& area) {
    area.setWidgetResizable(true);
    area.setFrameShape(QFrame::NoFrame);
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(24, 24, 24, 24);
    column->setSpacing(12);
    area.setWidget(page);
    return column;
}

} // namespace vorlane
