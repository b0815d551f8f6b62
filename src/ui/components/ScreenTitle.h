// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QLabel;
class QString;

namespace vorlane {

// The title at the top of a screen, in the type its kind of screen uses everywhere: an overview
// page (dashboard, expenses) large and bold, a list screen (search, All Credentials, archive,
// renewals) a size smaller and demibold. The caller owns the label. Main thread only.
class ScreenTitle {
public:
    enum class Kind { overview, list };

    static QLabel* create(const QString& text, Kind kind);
};

} // namespace vorlane
