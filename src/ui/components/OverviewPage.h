// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QScrollArea;
class QVBoxLayout;

namespace vorlane {

// The scrolling page of the overview screens (the dashboard and the expense overview): no frame,
// no sideways scrolling, the content in one column with the screens' margins and spacing.
class OverviewPage {
public:
    // Gives `area` its page and returns the page's column, for the screen to fill; the page
    // belongs to `area`.
    static QVBoxLayout* install(QScrollArea& area);
};

} // namespace vorlane
